#include "ui/panel/ChordPanel.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "memory/StoreAndRecall.h"
#include "sound/PdPlayer.h"
#include "ui/panel/MessageBoxes.h"

#include <QPushButton>

namespace {

constexpr int CHORDS_OF_ROW = 10;

/// Turning one of a pair on turns the other off.
void exclude(const QPushButton* clicked, QPushButton* other)
{
    if (clicked->isChecked())
        other->setChecked(false);
}

} // namespace

ChordPanel::ChordPanel(const Widgets& widgets, StoreAndRecall* memory, PdPlayer* player,
                       const Settings* settings)
    : mWidgets(widgets)
    , mMemory(memory)
    , mPlayer(player)
    , mSettings(settings)
    , mSigns(widgets.chords, memory, player->relay())
{
    connect(memory, &StoreAndRecall::replaced, this, [this](int slot) {
        if (slot > 0)
            setChordButton(slot, !mMemory->isChordEmpty(slot));
    });
}

// ---------------------------------------------------------------- store, recall and clear

void ChordPanel::chordButtonClicked(int number)
{
    if (mWidgets.clear->isChecked()) {
        if (mMemory->isChordEmpty(number))
            app::say(QStringLiteral("Chord %1 is empty already.").arg(number));
        mMemory->clearRatios(number);
        setChordButton(number, false);
    } else if (mWidgets.storeTo->isChecked()) {
        storeChord(number);
    } else {
        recallChord(number);
    }
}

void ChordPanel::storeChord(int number)
{
    QWidget* window = mWidgets.chordFrame->window();
    if (!mMemory->isAnythingPlaying())
        showWarning(window, QStringLiteral("Nothing to be stored!"));
    else if (mMemory->isChordEmpty(number) || askYesOrNo(window, QString(), QStringLiteral("Replace?")))
        storeAndTell(number);
    setChordButton(number, !mMemory->isChordEmpty(number));
}

void ChordPanel::storeAndTell(int number)
{
    app::say((mMemory->storeRatios(number) ? QStringLiteral("What sounds is stored as chord %1.")
                                           : QStringLiteral("Nothing sounds: chord %1 is empty."))
                 .arg(number));
}

void ChordPanel::recallChord(int number)
{
    if (mMemory->isChordEmpty(number)) {
        app::say(QStringLiteral("Chord %1 is empty. Press \"Store to ...\" before it to store what sounds.")
                     .arg(number));
        setChordButton(number, false);
        return;
    }
    const int mode = recallMode();
    if (mSettings->monophonic && mMemory->getNumberOfRatios(number) > 1
        && askYesOrNo(mWidgets.chordFrame->window(), QStringLiteral("Monophonic"),
                      QStringLiteral("We are in monophonic mode but you are recalling more than one note. "
                                     "Switch to polyphonic?")))
        emit polyphonicWanted();
    mMemory->recallRatios(number, mode);
    mPlayer->queueGui(OrloEvent::NodesRecalled, 1.0F);
    setChordButton(number, true);
}

int ChordPanel::recallMode() const
{
    if (mWidgets.additiveRecall->isChecked())
        return StoreAndRecall::Additive;
    return mWidgets.alternatingRecall->isChecked() ? StoreAndRecall::Alternating : StoreAndRecall::Standard;
}

void ChordPanel::overrideChordButtonStorage(int number)
{
    mMemory->clearRatios(number);
    storeAndTell(number);
    setChordButton(number, !mMemory->isChordEmpty(number));
}

void ChordPanel::reloadAllSoundingRatios()
{
    constexpr int scratch = 0;
    mMemory->clearRatios(scratch);
    mMemory->storeRatios(scratch);
    mMemory->recallRatios(scratch, StoreAndRecall::Standard);
    mPlayer->queueGui(OrloEvent::NodesRecalled, 1.0F);
    mMemory->clearRatios(scratch);
}

void ChordPanel::setChordButton(int number, bool on)
{
    mWidgets.chords[number - 1]->setChecked(on);
    mSigns.refreshSoon();
}

void ChordPanel::refreshChordButtons()
{
    for (int number = 1; number <= mWidgets.chords.size(); ++number)
        setChordButton(number, !mMemory->isChordEmpty(number));
}

void ChordPanel::clearAllChordButtons()
{
    mMemory->clearAll();
    refreshChordButtons();
}

// ---------------------------------------------------------------- what a press on them means

void ChordPanel::storeToClicked()
{
    exclude(mWidgets.storeTo, mWidgets.clear);
}

void ChordPanel::clearClicked()
{
    exclude(mWidgets.clear, mWidgets.storeTo);
}

void ChordPanel::additiveRecallClicked()
{
    exclude(mWidgets.additiveRecall, mWidgets.alternatingRecall);
}

void ChordPanel::alternatingRecallClicked()
{
    exclude(mWidgets.alternatingRecall, mWidgets.additiveRecall);
}

void ChordPanel::cycleRecallMode()
{
    if (mRestricted)
        return;
    const int mode = recallMode();
    mWidgets.additiveRecall->setChecked(mode == StoreAndRecall::Standard);
    mWidgets.alternatingRecall->setChecked(mode == StoreAndRecall::Additive);
}

void ChordPanel::clearAllClicked()
{
    if (mMemory->isStorageEmpty()) {
        app::say(QStringLiteral("There is no chord to clear."));
        return;
    }
    if (!askBeforeLoss(mWidgets.chordFrame->window(), QString(), QStringLiteral("Clear all memory?")))
        return;
    clearAllChordButtons();
}

void ChordPanel::holdClicked()
{
    mPlayer->queueGui(OrloEvent::NodesHold, mWidgets.hold->isChecked() ? 1.0F : 0.0F);
    if (mMemory->isAnythingPlaying())
        return;
    if (mWidgets.hold->isChecked())
        app::say(QStringLiteral("Nothing sounds that could be held."));
    mWidgets.hold->setChecked(false);
}

void ChordPanel::holdAnew()
{
    if (mRestricted)
        return;
    mWidgets.hold->setChecked(false);
    mWidgets.hold->animateClick();
}

// ---------------------------------------------------------------- the row of the number keys

void ChordPanel::chooseRow(int row)
{
    if (mRestricted)
        return;
    mRow = row;
    mWidgets.row1->setChecked(row == 0);
    mWidgets.row2->setChecked(row == 1);
}

void ChordPanel::pressChordOfRow(int index)
{
    mWidgets.chords[CHORDS_OF_ROW * mRow + index]->animateClick();
}

void ChordPanel::overrideChordOfRow(int index)
{
    if (!mRestricted)
        overrideChordButtonStorage(CHORDS_OF_ROW * mRow + index + 1);
}

void ChordPanel::setRestricted(bool restricted)
{
    mRestricted = restricted;
    for (QWidget* widget : {mWidgets.chordFrame, mWidgets.storeFrame, static_cast<QWidget*>(mWidgets.hold)})
        widget->setDisabled(restricted);
}
