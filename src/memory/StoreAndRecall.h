#pragma once

#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

#include <QHash>
#include <QList>
#include <QObject>

class PdPlayer;

/// The chord memory while the program runs: numbered slots, each a list of absolute ratios (SaveAndLoad
/// keeps them in files). Storing takes what sounds now; recalling compares a slot with what sounds and
/// toggles every note that has to change (RecallToggles), by the same commands as single presses.
/// Graphical thread.
///
/// Slots 1 to 20 are the chord buttons; slot 0 is for scratch. A slot that nothing was stored in
/// does not exist; one that exists may be empty, when it came from a file.
class StoreAndRecall : public QObject
{
    Q_OBJECT

public:
    using Chords = QHash<int, QList<OrloRatio>>;
    static constexpr int LAST_SLOT = 20;
    static constexpr int SETS = LAST_SLOT + 1; // for the files, which begin with slot 1

    enum RecallMode {
        Standard = 0,    // the chord replaces what sounds
        Additive = 1,    // comes on top; what of it sounds is taken away
        Alternating = 2, // every note of it changes over
    };

    /// The player is not owned.
    explicit StoreAndRecall(PdPlayer* player);

    /// False, and nothing changes, when nothing sounds or there is no such slot.
    bool storeRatios(int slot);
    /// False when the slot holds no note. A note under hold is not turned off. An unknown mode
    /// does nothing and gives true.
    bool recallRatios(int slot, int mode);
    /// The slot holds these from now on; without any it is cleared. False, and nothing changes, when there is
    /// no such slot.
    bool setRatios(int slot, const QList<OrloRatio>& ratios);
    void clearRatios(int slot);
    /// Always true.
    bool clearAll();

    bool isAnythingPlaying() const;
    /// Whether the slot does not exist.
    bool isChordEmpty(int slot) const;
    int getNumberOfRatios(int slot) const;
    /// Whether no slot exists.
    bool isStorageEmpty() const;
    /// Always true; there is nothing to do.
    bool loadAllSetsOfRatios() { return true; }

    /// The table, for the files.
    Chords* storedChords() { return &mChords; }
    const Chords& chords() const { return mChords; }

signals:
    void stored(int slot);
    /// By setRatios().
    void replaced(int slot);
    /// What has to change is queued.
    void recalled(int slot);

private:
    QList<OrloRatio> togglesOf(const QList<OrloRatio>& chord, int mode) const;
    void queueToggle(const OrloRatio& ratio);

    Chords mChords;
    PdPlayer* mPlayer;
    const OrloEvent mAllNotesOff{OrloEvent::AllNotesOff, 1.0F}; // nothing queues it
};
