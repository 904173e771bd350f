#pragma once

#include "scala/ScalaKeyboard.h"
#include "scala/ScalaScale.h"
#include "tuning/ScalaImport.h"

#include <QDialog>
#include <QList>

#include <optional>

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class StoreAndRecall;

/// Reads a Scala file, with a keyboard map or without, and stores its pitches as a chord. What was stored can
/// be taken back until the dialog is closed. [gui]
class ScalaToChordDialog : public QDialog
{
    Q_OBJECT

public:
    /// Both must outlive it.
    ScalaToChordDialog(StoreAndRecall& memory, const Orlo& orlo, QWidget* parent);

    /// A scale, a keyboard, or both. A keyboard alone goes with the scale that is there; a scale alone has no
    /// keyboard, unless one has waited for it.
    void take(const QStringList& paths);
    /// While they are restricted, nothing is stored.
    void setRestricted(bool restricted);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    struct Stored
    {
        int slot;
        QList<OrloRatio> before;
        QList<OrloRatio> after;
    };

    void browse(bool keyboard);
    void readScale(const QString& path);
    void readKeyboard(const QString& path);
    void dropKeyboard();
    void store();
    void undo();
    /// Reads the pitches by the present transposition and shows them.
    void update();
    void listSlots();
    void updateButtons();

    StoreAndRecall& mMemory;
    const Orlo& mOrlo;
    std::optional<ScalaScale> mScale;
    std::optional<ScalaKeyboard> mKeyboard;
    QString mScaleError; // of the file that was read last
    QString mKeyboardError;
    ScalaImport mImport;
    QList<Stored> mStored; // since the dialog was opened
    QString mFolder;       // of the file that was read last
    bool mRestricted = false;

    QLabel* mScaleName;
    QPushButton* mScaleButton;
    QLabel* mKeyboardName;
    QPushButton* mKeyboardButton;
    QPushButton* mNoKeyboard;
    QLabel* mDescription;
    QLabel* mPitches;
    QLabel* mLeftOutCaption;
    QListWidget* mLeftOut;
    QComboBox* mSlots;
    QLabel* mState;
    QPushButton* mStore;
    QPushButton* mUndo;
};
