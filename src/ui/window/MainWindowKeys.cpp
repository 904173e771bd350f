// The part of the main window that maps keys to actions.

#include "ui/window/MainWindow.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "sound/PdPlayer.h"
#include "ui/panel/TransposeWidget.h"
#include "ui_MainWindow.h"

#include <QDebug>
#include <QKeyEvent>

namespace {

constexpr int LAST_TRANSPOSE_ROW = 11;

// Where a key lies (keypad, group) does not matter, only what is held with it.
constexpr Qt::KeyboardModifiers HELD =
    Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

} // namespace

bool MainWindow::KeyRow::matches(Qt::KeyboardModifiers held) const
{
    switch (rule) {
    case Any: return true;
    case Exactly: return held == modifiers;
    case With: return (held & modifiers) == modifiers;
    }
    return false;
}

void MainWindow::addKey(int key, const KeyRow& row)
{
    mKeyMap[key].append(row);
}

void MainWindow::buildKeyMap()
{
    constexpr Qt::KeyboardModifiers none = Qt::NoModifier;
    constexpr Qt::KeyboardModifiers control = Qt::ControlModifier;
    constexpr Qt::KeyboardModifiers alt = Qt::AltModifier;
    using Row = KeyRow;
    const auto click = [](QPushButton* button) { return [button] { button->animateClick(); }; };
    const auto event = [this](OrloEvent::Type type) {
        return [this, type] { app::player()->queueGui(type, 1.0F); };
    };
    const auto ready = [this](const OrloEvent& eventOfOurs) {
        return [this, &eventOfOurs] { app::player()->queueEventGui(&eventOfOurs); };
    };

    for (int digit = 0; digit <= 9; ++digit) {
        const int index = (digit + 9) % 10; // 0 stands behind 9
        addKey(Qt::Key_0 + digit, {Row::Exactly, none, [this, index] { chordOfRow(index)->animateClick(); }});
        addKey(Qt::Key_0 + digit, {Row::Exactly, alt, [this, index] {
                                       if (!mRestricted)
                                           overrideChordButtonStorage(10 * mChordRow + index + 1);
                                   }});
        addKey(Qt::Key_0 + digit, {Row::Exactly, control, [this, index] { patch_by_Index(index); }});
    }

    addKey(Qt::Key_A, {Row::Exactly, none, [this] { onAbsRelSwitcherClicked(QStringLiteral("absolute")); }});
    addKey(Qt::Key_A, {Row::Exactly, control, [this] { cycleRecallMode(); }});
    addKey(Qt::Key_A, {Row::Exactly, alt, event(OrloEvent::NodesSelectAllSounding)});
    addKey(Qt::Key_B, {Row::Any, none, click(ui->soundgrapeBWButton)});
    addKey(Qt::Key_C, {Row::Exactly, none, click(ui->soundgrapeColourButton)});
    addKey(Qt::Key_C, {Row::Exactly, control, click(ui->chordClearButton)});
    addKey(Qt::Key_C, {Row::Exactly, alt, click(ui->chordClearAllButton)});
    addKey(Qt::Key_F, {Row::With, control, click(ui->expandOrloButton)});
    addKey(Qt::Key_F, {Row::Any, none, [this] { onSwitcherClicked(QStringLiteral("circles")); }});
    addKey(Qt::Key_G, {Row::With, control, [this] { toggleGlissSliders(); }});
    addKey(Qt::Key_G, {Row::With, alt, [this] {
                           if (!mRestricted)
                               ui->glissFineSliderBig->setValue(ui->glissFineSliderBig->maximum() / 2);
                       }});
    addKey(Qt::Key_G, {Row::Any, none, [this] { onSwitcherClicked(QStringLiteral("grapes")); }});
    addKey(Qt::Key_H, {Row::Exactly, none, click(ui->chordHoldButton)});
    addKey(Qt::Key_H, {Row::Exactly, alt, [this] {
                           if (mRestricted)
                               return;
                           ui->chordHoldButton->setChecked(false);
                           ui->chordHoldButton->animateClick();
                       }});
    addKey(Qt::Key_J, {Row::Any, none, [this] { chooseChordRow(1); }});
    addKey(Qt::Key_U, {Row::Any, none, [this] { chooseChordRow(0); }});
    addKey(Qt::Key_K,
           {Row::With, control, [this] { ui->volumeSlider->setValue(ui->volumeSlider->minimum()); }});
    addKey(Qt::Key_K, {Row::Any, none, [this] {
                           if (ui->volumeSlider->value() >= 2)
                               ui->volumeSlider->setValue(ui->volumeSlider->value() - 2);
                       }});
    addKey(Qt::Key_L, {Row::Exactly, control, click(ui->saveChordSetLoadButton)});
    addKey(Qt::Key_M, {Row::With, alt, [this] { setMacroSlidersToDefault(); }});
    addKey(Qt::Key_M, {Row::Any, none, [this] {
                           ui->monoButton->setChecked(true);
                           ui->polyButton->setChecked(false);
                           on_monoButton_clicked();
                       }});
    addKey(Qt::Key_N, {Row::With, alt | control, event(OrloEvent::NodesResetAllDeselect)});
    addKey(Qt::Key_N, {Row::Exactly, alt, event(OrloEvent::NodesResetAll)});
    addKey(Qt::Key_N, {Row::Any, none, click(ui->normalizeRatiosButton)});
    addKey(Qt::Key_O, {Row::With, control, [this] {
                           ui->volumeSlider->setValue(
                               static_cast<int>(ui->volumeSlider->maximum() * Settings::DEFAULT_VOLUME));
                       }});
    addKey(Qt::Key_O, {Row::Any, none, [this] {
                           if (ui->volumeSlider->value() + 1 < ui->volumeSlider->maximum())
                               ui->volumeSlider->setValue(ui->volumeSlider->value() + 2);
                       }});
    addKey(Qt::Key_P, {Row::Any, none, [this] {
                           ui->monoButton->setChecked(false);
                           ui->polyButton->setChecked(true);
                           on_polyButton_clicked();
                       }});
    addKey(Qt::Key_R, {Row::With, alt | control, event(OrloEvent::NodesResetAllAndControlsDeselect)});
    addKey(Qt::Key_R, {Row::With, alt, event(OrloEvent::NodesResetAllAndControls)});
    addKey(Qt::Key_R, {Row::Any, none, [this] { onAbsRelSwitcherClicked(QStringLiteral("relative")); }});
    addKey(Qt::Key_S, {Row::Exactly, control, click(ui->saveChordSetSaveButton)});
    addKey(Qt::Key_S, {Row::Exactly, alt, [this] { setMacroSlidersToDefault(); }});
    addKey(Qt::Key_T, {Row::Exactly, control, click(ui->chordStoreToButton)});
    addKey(Qt::Key_T, {Row::Exactly, alt, event(OrloEvent::NodesToggleAllSelected)});
    addKey(Qt::Key_X, {Row::Exactly, alt, event(OrloEvent::NodesResetSelectedDeselect)});
    addKey(Qt::Key_X, {Row::Any, none, [this] { ui->transposeWidget->toggle(mHighlightedRow); }});
    addKey(Qt::Key_Z, {Row::With, alt | control, event(OrloEvent::NodesResetSelectedDeselect)});
    addKey(Qt::Key_Z, {Row::Exactly, alt, event(OrloEvent::NodesResetSelected)});
    addKey(Qt::Key_Comma, {Row::Exactly, control, [this] { on_optionsButton_clicked(); }});
    for (const int key : {Qt::Key_Equal, Qt::Key_Backspace})
        addKey(key, {Row::Any, none, [this] { ui->transposeWidget->resetTranspose(); }});
    addKey(Qt::Key_Escape, {Row::With, control, click(ui->stopAllButton)});
    addKey(Qt::Key_Escape, {Row::With, alt, ready(mNodesDeselectAll)});
    addKey(Qt::Key_Escape, {Row::Any, none, ready(mAllNotesOff)});
    addKey(Qt::Key_Left, {Row::Any, none, [this] { ui->transposeWidget->transposeDown(mHighlightedRow); }});
    addKey(Qt::Key_Right, {Row::Any, none, [this] { ui->transposeWidget->transposeUp(mHighlightedRow); }});
    addKey(Qt::Key_Up, {Row::Any, none, [this] { moveHighlight(-1); }});
    addKey(Qt::Key_Down, {Row::Any, none, [this] { moveHighlight(1); }});
    addKey(Qt::Key_Alt, {Row::Any, none, [this] {
                             qDebug() << "Alt key pressed";
                             mAltDown = true;
                         }});
}

void MainWindow::moveHighlight(int by)
{
    const int row = mHighlightedRow + by;
    if (row < 1 || row > LAST_TRANSPOSE_ROW)
        return;
    ui->transposeWidget->highlight(mHighlightedRow, false);
    mHighlightedRow = row;
    ui->transposeWidget->highlight(row, true);
}

void MainWindow::keyPressEvent(QKeyEvent* event)
{
    for (const KeyRow& row : mKeyMap.value(event->key())) {
        if (row.matches(event->modifiers() & HELD)) {
            row.action();
            return;
        }
    }
    QMainWindow::keyPressEvent(event);
}

void MainWindow::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Alt) {
        qDebug() << "Alt key released";
        mAltDown = false;
        return;
    }
    QMainWindow::keyReleaseEvent(event);
}
