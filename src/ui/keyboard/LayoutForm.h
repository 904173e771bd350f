#pragma once

#include "keyboard/Layout.h"

#include <QWidget>

#include <functional>

class LearnedKeysForm;
class MidiPlaying;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QSpinBox;
class QStackedWidget;

/// The values of one layout. A change is told at once, with the whole layout. [gui]
class LayoutForm : public QWidget
{
    Q_OBJECT

public:
    explicit LayoutForm(MidiPlaying& playing);

    /// edited() is not emitted.
    void showLayout(const Layout& layout);

signals:
    void edited(const Layout& layout);

private:
    QWidget* buildTwelve();
    QWidget* buildGenerators();
    QWidget* buildScala();
    QWidget* buildHarmonics();

    /// Each of these adds a row, whose value it writes into the layout and tells.
    QSpinBox* addNumber(QGridLayout* grid, const char* name, const QString& caption, int lowest, int highest,
                        std::function<void(int)> write);
    QComboBox* addMenu(QGridLayout* grid, const char* name, const QString& caption,
                       const QStringList& entries, std::function<void(int)> write);
    QLineEdit* addPath(QGridLayout* grid, const char* name, const QString& caption,
                       std::function<OrloPathUnlimited&()> path);

    void chooseInput(int index);
    void readScale();
    void readKeyboard();
    void showScala();
    void listInputs();
    /// Unless it is showLayout() that changes a control.
    void tell();

    MidiPlaying& mPlaying;
    Layout mLayout;
    bool mShowing = false;
    QString mFolder; // of the Scala file that was read last

    QComboBox* mInput;
    QSpinBox* mFirstChannel;
    QSpinBox* mLastChannel;
    QSpinBox* mRootKey;
    QLabel* mRootName;
    QStackedWidget* mPages; // one for each kind, in its order
    LearnedKeysForm* mLearned;
    QComboBox* mPrimeLimit = nullptr;
    QDoubleSpinBox* mWindow = nullptr;
    QLineEdit* mAlong = nullptr;
    QLineEdit* mAcross = nullptr;
    QComboBox* mRows = nullptr;
    QSpinBox* mRowLength = nullptr;
    QSpinBox* mRootChannel = nullptr;
    QLabel* mScale = nullptr;
    QLabel* mKeyboard = nullptr;
    QSpinBox* mFirst = nullptr;
    QSpinBox* mOctaves = nullptr;
    QComboBox* mBeyond31 = nullptr;
};
