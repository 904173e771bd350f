#pragma once

#include "ui/panel/ChordButtonSigns.h"

#include <QList>
#include <QObject>

class PdPlayer;
class QPushButton;
class QWidget;
class Settings;
class StoreAndRecall;

/// The chord buttons and those that say what a press on them means. A checked chord button shows that
/// its slot of the chord memory is not empty. Chords are counted from 1.
class ChordPanel : public QObject
{
    Q_OBJECT

public:
    /// Not owned.
    struct Widgets
    {
        QWidget* chordFrame;
        QWidget* storeFrame;
        QList<QPushButton*> chords;
        QPushButton* row1;
        QPushButton* row2;
        QPushButton* storeTo;
        QPushButton* clear;
        QPushButton* additiveRecall;
        QPushButton* alternatingRecall;
        QPushButton* hold;
    };
    ChordPanel(const Widgets& widgets, StoreAndRecall* memory, PdPlayer* player, const Settings* settings);

    /// After a click, which has toggled the button: clears, stores or recalls the chord.
    void chordButtonClicked(int number);
    // After a click on the button.
    void storeToClicked();
    void clearClicked();
    void clearAllClicked();
    void additiveRecallClicked();
    void alternatingRecallClicked();
    void holdClicked();

    // What the keys do; nothing under restrictions.
    /// Chooses the ten chords that the number keys address, 0 or 1; also called by a click on a row button.
    void chooseRow(int row);
    /// Presses a chord button of the chosen row, by its index from 0.
    void pressChordOfRow(int index);
    void overrideChordOfRow(int index);
    /// From replacing over additive to alternating recall and back.
    void cycleRecallMode();
    /// Holds what sounds now, whether hold was on or not.
    void holdAnew();

    /// Stores without asking, an empty chord too.
    void overrideChordButtonStorage(int number);
    void setChordButton(int number, bool on);
    /// As the chord memory is.
    void refreshChordButtons();
    void clearAllChordButtons();
    /// Stores what sounds once more and recalls it, by way of the scratch slot.
    void reloadAllSoundingRatios();

    void setRestricted(bool restricted);

signals:
    /// A chord is about to be recalled in monophonic mode, and the player wants to hear all of it.
    void polyphonicWanted();

private:
    void storeChord(int number);
    void storeAndTell(int number);
    void recallChord(int number);
    int recallMode() const;

    Widgets mWidgets;
    StoreAndRecall* mMemory;
    PdPlayer* mPlayer;
    const Settings* mSettings;
    ChordButtonSigns mSigns;
    int mRow = 0;
    bool mRestricted = false;
};
