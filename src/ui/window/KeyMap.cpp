#include "ui/window/KeyMap.h"

#include "app/Accessors.h"
#include "model/Orlo.h"
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

void KeyMap::add(int key, Rule rule, Qt::KeyboardModifiers modifiers, Help help, const Action& action)
{
    mRows[key].append({rule, modifiers, action});
    mHelp.append({QKeyCombination(modifiers, static_cast<Qt::Key>(key)), help});
}

KeyMap::Action KeyMap::click(QPushButton* button)
{
    return [button] { button->animateClick(); };
}

KeyMap::Action KeyMap::queue(OrloEvent::Type type) const
{
    return [this, type] { mPlayer->queueGui(type, 1.0F); };
}

KeyMap::Action KeyMap::queueForSelected(OrloEvent::Type type) const
{
    return [this, type] {
        if (app::orlo()->selectedRatios().isEmpty())
            app::say(QStringLiteral("Nothing is selected."));
        mPlayer->queueGui(type, 1.0F);
    };
}

void KeyMap::selectAllSounding() const
{
    if (app::orlo()->playingRatios().isEmpty())
        app::say(QStringLiteral("Nothing sounds that could be selected."));
    mPlayer->queueGui(OrloEvent::NodesSelectAllSounding, 1.0F);
}

KeyMap::Action KeyMap::queue(const OrloEvent& event) const
{
    return [this, &event] { mPlayer->queueEventGui(&event); };
}

// ---------------------------------------------------------------- the table

void KeyMap::addDigits()
{
    for (int index = 0; index <= 9; ++index) {
        const int key = Qt::Key_0 + (index + 1) % 10; // 0 comes after 9
        add(key, Exactly, NONE, {Chords, "press the button of this number in the chosen row"},
            [this, index] { mPanel->chords.pressChordOfRow(index); });
        add(key, Exactly, ALT, {Chords, "store what sounds under this number of the row, without asking"},
            [this, index] { mPanel->chords.overrideChordOfRow(index); });
        add(key, Exactly, CONTROL, {Sound, "patch 1 to 10 of the menu"},
            [this, index] { mPanel->patches.patch_by_Index(index); });
    }
}

void KeyMap::addLettersToL()
{
    add(Qt::Key_A, Exactly, NONE, {View, "absolute: colours and cards as 1/1 sees them"},
        [this] { mPanel->display.chooseAbsRel(QStringLiteral("absolute")); });
    add(Qt::Key_A, Exactly, CONTROL, {Chords, "recalling: replace, add and take away, alternate"},
        [this] { mPanel->chords.cycleRecallMode(); });
    add(Qt::Key_A, Exactly, ALT, {Nodes, "select all that sounds"}, [this] { selectAllSounding(); });
    add(Qt::Key_B, Any, NONE, {View, "soundgrape on the cards, black and white"},
        click(mForm.soundgrapeBWButton));
    add(Qt::Key_C, Exactly, NONE, {View, "soundgrape on the cards, coloured"},
        click(mForm.soundgrapeColourButton));
    add(Qt::Key_C, Exactly, CONTROL, {Chords, "Clear: the next numbers are emptied"},
        click(mForm.chordClearButton));
    add(Qt::Key_C, Exactly, ALT, {Chords, "clear all, after a question"}, click(mForm.chordClearAllButton));
    add(Qt::Key_F, With, CONTROL, {View, "hide or show the upper panel and the cards"},
        click(mForm.expandOrloButton));
    add(Qt::Key_F, Any, NONE, {View, "flowers"},
        [this] { mPanel->display.chooseView(QStringLiteral("circles")); });
    add(Qt::Key_G, With, CONTROL, {Sound, "hide or show the glissando sliders"},
        [this] { mPanel->glissando.toggleGlissSliders(); });
    add(Qt::Key_G, With, ALT, {Sound, "fine glissando slider to its centre"},
        [this] { mPanel->glissando.centreFine(); });
    add(Qt::Key_G, Any, NONE, {View, "grapes"},
        [this] { mPanel->display.chooseView(QStringLiteral("grapes")); });
    add(Qt::Key_H, Exactly, NONE, {Chords, "hold what sounds, or let it go"}, click(mForm.chordHoldButton));
    add(Qt::Key_H, Exactly, ALT, {Chords, "hold what sounds now"}, [this] { mPanel->chords.holdAnew(); });
    add(Qt::Key_J, Any, NONE, {Chords, "second row, for the number keys"},
        [this] { mPanel->chords.chooseRow(1); });
    add(Qt::Key_K, With, CONTROL, {Sound, "volume off"}, [this] { mPanel->volume.setToMinimum(); });
    add(Qt::Key_K, Any, NONE, {Sound, "volume down"}, [this] { mPanel->volume.lower(); });
    add(Qt::Key_L, Exactly, CONTROL, {Chords, "load the preset"},
        [this] { mPanel->chordPresets.pressLoad(); });
}

void KeyMap::addLettersFromM()
{
    constexpr Help macros{Sound, "all sliders of the patch to their defaults"};
    constexpr Help resetSelected{Nodes, "reset what is selected, and deselect it"};
    add(Qt::Key_M, With, ALT, macros, [this] { mPanel->macros.queueDefaults(); });
    add(Qt::Key_M, Any, NONE, {Sound, "monophonic"}, [this] { mPanel->monoPoly.chooseMono(); });
    add(Qt::Key_N, With, ALT | CONTROL, {Nodes, "reset all, and deselect them"},
        queue(OrloEvent::NodesResetAllDeselect));
    add(Qt::Key_N, Exactly, ALT, {Nodes, "reset all"}, queue(OrloEvent::NodesResetAll));
    add(Qt::Key_N, Any, NONE, {View, "ratios on the cards within one octave, or as they are"},
        click(mForm.normalizeRatiosButton));
    add(Qt::Key_O, With, CONTROL, {Sound, "volume to three quarters"},
        [this] { mPanel->volume.setToDefault(); });
    add(Qt::Key_O, Any, NONE, {Sound, "volume up"}, [this] { mPanel->volume.raise(); });
    add(Qt::Key_P, Any, NONE, {Sound, "polyphonic"}, [this] { mPanel->monoPoly.choosePoly(); });
    add(Qt::Key_R, With, ALT | CONTROL, {Nodes, "reset all and the sliders, and deselect them"},
        queue(OrloEvent::NodesResetAllAndControlsDeselect));
    add(Qt::Key_R, With, ALT, {Nodes, "reset all and the sliders"},
        queue(OrloEvent::NodesResetAllAndControls));
    add(Qt::Key_R, Any, NONE, {View, "relative: colours and cards as the central ball sees them"},
        [this] { mPanel->display.chooseAbsRel(QStringLiteral("relative")); });
    add(Qt::Key_S, Exactly, CONTROL, {Chords, "save the preset"},
        [this] { mPanel->chordPresets.pressSave(); });
    add(Qt::Key_S, Exactly, ALT, macros, [this] { mPanel->macros.queueDefaults(); });
    add(Qt::Key_T, Exactly, CONTROL, {Chords, "Store to: the next numbers take what sounds"},
        click(mForm.chordStoreToButton));
    add(Qt::Key_T, Exactly, ALT, {Nodes, "end or start the notes that are selected"},
        queueForSelected(OrloEvent::NodesToggleAllSelected));
    add(Qt::Key_U, Any, NONE, {Chords, "first row, for the number keys"},
        [this] { mPanel->chords.chooseRow(0); });
    add(Qt::Key_X, Exactly, ALT, resetSelected, queueForSelected(OrloEvent::NodesResetSelectedDeselect));
    TransposeWidget* transpose = mForm.transposeWidget;
    add(Qt::Key_X, Any, NONE, {Transposing, "switch the chosen prime off or on"},
        [transpose] { transpose->toggle(transpose->highlightedRow()); });
    add(Qt::Key_Z, With, ALT | CONTROL, resetSelected,
        queueForSelected(OrloEvent::NodesResetSelectedDeselect));
    add(Qt::Key_Z, Exactly, ALT, {Nodes, "reset what is selected"},
        queueForSelected(OrloEvent::NodesResetSelected));
}

void KeyMap::addOtherKeys()
{
    add(Qt::Key_Comma, Exactly, CONTROL, {Program, "open or close the options"}, mToggleOptions);
    add(Qt::Key_Escape, With, CONTROL, {Sound, "stop all at once"}, click(mForm.stopAllButton));
    add(Qt::Key_Escape, With, ALT, {Nodes, "deselect all"}, queue(mPanel->nodesDeselectAll));
    add(Qt::Key_Escape, Any, NONE, {Sound, "end all notes but those that are held"},
        queue(mPanel->allNotesOff));
    TransposeWidget* transpose = mForm.transposeWidget;
    for (const int key : {Qt::Key_Equal, Qt::Key_Backspace})
        add(key, Any, NONE, {Transposing, "back to no transposition"},
            [transpose] { transpose->resetTranspose(); });
    add(Qt::Key_Left, Any, NONE, {Transposing, "transpose down by the chosen prime"},
        [transpose] { transpose->transposeDown(transpose->highlightedRow()); });
    add(Qt::Key_Right, Any, NONE, {Transposing, "transpose up by the chosen prime"},
        [transpose] { transpose->transposeUp(transpose->highlightedRow()); });
    constexpr Help choose{Transposing, "choose a prime of the column at the left"};
    add(Qt::Key_Up, Any, NONE, choose, [transpose] { transpose->moveHighlight(-1); });
    add(Qt::Key_Down, Any, NONE, choose, [transpose] { transpose->moveHighlight(1); });
    add(Qt::Key_Alt, Any, NONE, {Sound, "held: a slider that is let go returns to its default"}, [this] {
        qDebug() << "Alt key pressed";
        mPanel->snapBack.setAltDown(true);
    });
}

// ---------------------------------------------------------------- what it tells of itself

QList<HelpSection> KeyMap::help() const
{
    QList<HelpSection> sections;
    for (const char* title : {"Sound", "Chords", "View", "Transposing", "What is selected", "Program"})
        sections.append({QLatin1StringView(title), {}});
    for (const auto& [key, help] : mHelp)
        sections[help.group].add(key, QLatin1StringView(help.text));
    return sections;
}
