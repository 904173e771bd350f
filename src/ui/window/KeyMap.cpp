#include "ui/window/KeyMap.h"

#include "sound/PdPlayer.h"
#include "ui/panel/TransposeWidget.h"
#include "ui/window/PanelParts.h"
#include "ui_MainWindow.h"

#include <QDebug>

namespace {

constexpr Qt::KeyboardModifiers NONE = Qt::NoModifier;
constexpr Qt::KeyboardModifiers CONTROL = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers ALT = Qt::AltModifier;

// Whether a key lies on the keypad does not matter, only what is held with it.
constexpr Qt::KeyboardModifiers HELD =
    Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

} // namespace

KeyMap::KeyMap(const Ui::MainWindow& form, PanelParts* panel, PdPlayer* player, const Action& toggleOptions)
    : mForm(form)
    , mPanel(panel)
    , mPlayer(player)
    , mToggleOptions(toggleOptions)
{
    addDigits();
    addLettersToL();
    addLettersFromM();
    addOtherKeys();
}

bool KeyMap::press(int key, Qt::KeyboardModifiers held) const
{
    for (const Row& row : mRows.value(key)) {
        if (row.matches(held & HELD)) {
            row.action();
            return true;
        }
    }
    return false;
}

bool KeyMap::release(int key) const
{
    if (key != Qt::Key_Alt)
        return false;
    qDebug() << "Alt key released";
    mPanel->snapBack.setAltDown(false);
    return true;
}

bool KeyMap::Row::matches(Qt::KeyboardModifiers held) const
{
    switch (rule) {
    case Any: return true;
    case Exactly: return held == modifiers;
    case With: return (held & modifiers) == modifiers;
    }
    return false;
}

void KeyMap::add(int key, Rule rule, Qt::KeyboardModifiers modifiers, const Action& action)
{
    mRows[key].append({rule, modifiers, action});
}

KeyMap::Action KeyMap::click(QPushButton* button)
{
    return [button] { button->animateClick(); };
}

KeyMap::Action KeyMap::queue(OrloEvent::Type type) const
{
    return [this, type] { mPlayer->queueGui(type, 1.0F); };
}

KeyMap::Action KeyMap::queue(const OrloEvent& event) const
{
    return [this, &event] { mPlayer->queueEventGui(&event); };
}

// ---------------------------------------------------------------- the table

void KeyMap::addDigits()
{
    for (int digit = 0; digit <= 9; ++digit) {
        const int key = Qt::Key_0 + digit;
        const int index = (digit + 9) % 10; // 0 comes after 9
        add(key, Exactly, NONE, [this, index] { mPanel->chords.pressChordOfRow(index); });
        add(key, Exactly, ALT, [this, index] { mPanel->chords.overrideChordOfRow(index); });
        add(key, Exactly, CONTROL, [this, index] { mPanel->patches.patch_by_Index(index); });
    }
}

void KeyMap::addLettersToL()
{
    add(Qt::Key_A, Exactly, NONE, [this] { mPanel->display.chooseAbsRel(QStringLiteral("absolute")); });
    add(Qt::Key_A, Exactly, CONTROL, [this] { mPanel->chords.cycleRecallMode(); });
    add(Qt::Key_A, Exactly, ALT, queue(OrloEvent::NodesSelectAllSounding));
    add(Qt::Key_B, Any, NONE, click(mForm.soundgrapeBWButton));
    add(Qt::Key_C, Exactly, NONE, click(mForm.soundgrapeColourButton));
    add(Qt::Key_C, Exactly, CONTROL, click(mForm.chordClearButton));
    add(Qt::Key_C, Exactly, ALT, click(mForm.chordClearAllButton));
    add(Qt::Key_F, With, CONTROL, click(mForm.expandOrloButton));
    add(Qt::Key_F, Any, NONE, [this] { mPanel->display.chooseView(QStringLiteral("circles")); });
    add(Qt::Key_G, With, CONTROL, [this] { mPanel->glissando.toggleGlissSliders(); });
    add(Qt::Key_G, With, ALT, [this] { mPanel->glissando.centreFine(); });
    add(Qt::Key_G, Any, NONE, [this] { mPanel->display.chooseView(QStringLiteral("grapes")); });
    add(Qt::Key_H, Exactly, NONE, click(mForm.chordHoldButton));
    add(Qt::Key_H, Exactly, ALT, [this] { mPanel->chords.holdAnew(); });
    add(Qt::Key_J, Any, NONE, [this] { mPanel->chords.chooseRow(1); });
    add(Qt::Key_K, With, CONTROL, [this] { mPanel->volume.setToMinimum(); });
    add(Qt::Key_K, Any, NONE, [this] { mPanel->volume.lower(); });
    add(Qt::Key_L, Exactly, CONTROL, click(mForm.saveChordSetLoadButton));
}

void KeyMap::addLettersFromM()
{
    add(Qt::Key_M, With, ALT, [this] { mPanel->macros.queueDefaults(); });
    add(Qt::Key_M, Any, NONE, [this] { mPanel->monoPoly.chooseMono(); });
    add(Qt::Key_N, With, ALT | CONTROL, queue(OrloEvent::NodesResetAllDeselect));
    add(Qt::Key_N, Exactly, ALT, queue(OrloEvent::NodesResetAll));
    add(Qt::Key_N, Any, NONE, click(mForm.normalizeRatiosButton));
    add(Qt::Key_O, With, CONTROL, [this] { mPanel->volume.setToDefault(); });
    add(Qt::Key_O, Any, NONE, [this] { mPanel->volume.raise(); });
    add(Qt::Key_P, Any, NONE, [this] { mPanel->monoPoly.choosePoly(); });
    add(Qt::Key_R, With, ALT | CONTROL, queue(OrloEvent::NodesResetAllAndControlsDeselect));
    add(Qt::Key_R, With, ALT, queue(OrloEvent::NodesResetAllAndControls));
    add(Qt::Key_R, Any, NONE, [this] { mPanel->display.chooseAbsRel(QStringLiteral("relative")); });
    add(Qt::Key_S, Exactly, CONTROL, click(mForm.saveChordSetSaveButton));
    add(Qt::Key_S, Exactly, ALT, [this] { mPanel->macros.queueDefaults(); });
    add(Qt::Key_T, Exactly, CONTROL, click(mForm.chordStoreToButton));
    add(Qt::Key_T, Exactly, ALT, queue(OrloEvent::NodesToggleAllSelected));
    add(Qt::Key_U, Any, NONE, [this] { mPanel->chords.chooseRow(0); });
    add(Qt::Key_X, Exactly, ALT, queue(OrloEvent::NodesResetSelectedDeselect));
    TransposeWidget* transpose = mForm.transposeWidget;
    add(Qt::Key_X, Any, NONE, [transpose] { transpose->toggle(transpose->highlightedRow()); });
    add(Qt::Key_Z, With, ALT | CONTROL, queue(OrloEvent::NodesResetSelectedDeselect));
    add(Qt::Key_Z, Exactly, ALT, queue(OrloEvent::NodesResetSelected));
}

void KeyMap::addOtherKeys()
{
    add(Qt::Key_Comma, Exactly, CONTROL, mToggleOptions);
    add(Qt::Key_Escape, With, CONTROL, click(mForm.stopAllButton));
    add(Qt::Key_Escape, With, ALT, queue(mPanel->nodesDeselectAll));
    add(Qt::Key_Escape, Any, NONE, queue(mPanel->allNotesOff));
    TransposeWidget* transpose = mForm.transposeWidget;
    for (const int key : {Qt::Key_Equal, Qt::Key_Backspace})
        add(key, Any, NONE, [transpose] { transpose->resetTranspose(); });
    add(Qt::Key_Left, Any, NONE, [transpose] { transpose->transposeDown(transpose->highlightedRow()); });
    add(Qt::Key_Right, Any, NONE, [transpose] { transpose->transposeUp(transpose->highlightedRow()); });
    add(Qt::Key_Up, Any, NONE, [transpose] { transpose->moveHighlight(-1); });
    add(Qt::Key_Down, Any, NONE, [transpose] { transpose->moveHighlight(1); });
    add(Qt::Key_Alt, Any, NONE, [this] {
        qDebug() << "Alt key pressed";
        mPanel->snapBack.setAltDown(true);
    });
}
