#include "memory/StoreAndRecall.h"

#include "memory/RecallToggles.h"
#include "sound/OrloNoteEvent.h"
#include "sound/PdPlayer.h"

#include <QDebug>
#include <QThread>

namespace {

// The player's command buffer holds 255, and a change of two full chords is more than that. Some of it
// is left to what follows a recall.
constexpr int ROOM_FOR_OTHERS = 55;

} // namespace

StoreAndRecall::StoreAndRecall(PdPlayer* player)
    : mPlayer(player)
{
}

bool StoreAndRecall::storeRatios(int slot)
{
    const QList<OrloRatio> sounding = mPlayer->getAllSoundingRatios();
    if (slot > LAST_SLOT || sounding.isEmpty())
        return false;
    mChords.insert(slot, sounding);
    emit stored(slot);
    return true;
}

bool StoreAndRecall::recallRatios(int slot, int mode)
{
    if (slot > LAST_SLOT)
        return false;
    const QList<OrloRatio> chord = mChords.value(slot);
    if (chord.isEmpty())
        return false;
    for (const OrloRatio& ratio : togglesOf(chord, mode)) {
        if (!mPlayer->waitForRoom(1 + ROOM_FOR_OTHERS)) {
            qWarning() << "The sound engine is stuck: the chord is not recalled whole.";
            break;
        }
        queueToggle(ratio);
    }
    if (mode == Standard)
        qDebug() << "Recall (standard) has been processed ...";
    emit recalled(slot);
    return true;
}

QList<OrloRatio> StoreAndRecall::togglesOf(const QList<OrloRatio>& chord, int mode) const
{
    const QList<OrloRatio> sounding = mPlayer->getAllSoundingRatios();
    switch (mode) {
    case Standard:
        qDebug() << "StoreAndRecall Recall (standard) got AllSoundingRatios # " << sounding.size();
        return recalltoggles::standard(chord, sounding);
    case Additive: return recalltoggles::additive(chord, sounding);
    case Alternating: return chord;
    default: return {};
    }
}

void StoreAndRecall::queueToggle(const OrloRatio& ratio)
{
    const OrloNoteEvent event(ratio);
    mPlayer->queueEventGui(&event);
    QThread::msleep(0);
}

bool StoreAndRecall::setRatios(int slot, const QList<OrloRatio>& ratios)
{
    if (slot < 0 || slot > LAST_SLOT)
        return false;
    if (ratios.isEmpty())
        mChords.remove(slot);
    else
        mChords.insert(slot, ratios);
    emit replaced(slot);
    return true;
}

void StoreAndRecall::clearRatios(int slot)
{
    mChords.remove(slot);
}

bool StoreAndRecall::clearAll()
{
    mChords.clear();
    return true;
}

bool StoreAndRecall::isAnythingPlaying() const
{
    return !mPlayer->getAllSoundingRatios().isEmpty();
}

bool StoreAndRecall::isChordEmpty(int slot) const
{
    return !mChords.contains(slot);
}

int StoreAndRecall::getNumberOfRatios(int slot) const
{
    return static_cast<int>(mChords.value(slot).size());
}

bool StoreAndRecall::isStorageEmpty() const
{
    for (int slot = 0; slot <= LAST_SLOT; ++slot) {
        if (mChords.contains(slot))
            return false;
    }
    return true;
}
