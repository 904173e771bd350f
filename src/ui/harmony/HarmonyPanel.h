#pragma once

#include "harmony/SoundingNote.h"

#include <QFrame>
#include <QTimer>

class CentsRuler;
class CutLabel;
class PairsModel;
class QGridLayout;
class QLabel;
class QPushButton;
struct Harmony;

/// What the notes that sound are to each other: the chord as whole numbers, its prime limit and common
/// fundamental, a ruler of cents, each pair, and how far 1/1 has moved. While it is shown it looks once a
/// frame whether the notes are others; hidden, it does nothing. HarmonyDock decides where it lies. [gui]
class HarmonyPanel : public QFrame
{
    Q_OBJECT

public:
    explicit HarmonyPanel(QWidget* parent);

    /// Says what the button for that does.
    void setFloats(bool floats);
    /// Shows what sounds now, if it is not shown already.
    void look();
    /// Shows these notes, and how far 1/1 has moved.
    void fill(const QList<SoundingNote>& notes, const OrloRatio& transposition);

signals:
    /// Once a frame, while it is shown.
    void looked();
    void floatClicked();
    void closeClicked();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QLayout* makeHeader();
    QLayout* makeFacts();
    QWidget* makePairs();
    void showChord(const Harmony& harmony);

    /// A caption, and a text of any length beside it.
    struct Fact
    {
        QLabel* caption;
        CutLabel* text;
    };
    static Fact addFact(QGridLayout& grid, const char* control, const QString& name, int mostLines);

    QPushButton* mFloat;
    Fact mFirst{};  // the simpler of otonal and utonal
    Fact mSecond{}; // the other one
    Fact mLimit{};
    Fact mFundamental{};
    CutLabel* mLeftOut;
    CentsRuler* mRuler;
    PairsModel* mPairs;
    CutLabel* mDrift;

    QTimer mTimer{this};
    bool mFilled = false;
    QList<SoundingNote> mNotes; // that are shown
    OrloRatio mTransposition;
};
