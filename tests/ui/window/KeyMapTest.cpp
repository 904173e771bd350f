#include "ui/WindowFixture.h"

#include <QTest>

using KeyMapTest = WindowFixture;

TEST_F(KeyMapTest, KeysQueueCommands)
{
    constexpr auto alt = Qt::AltModifier;
    constexpr auto control = Qt::ControlModifier;
    constexpr auto shift = Qt::ShiftModifier;
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, OrloEvent::Type> rows[] = {
        {Qt::Key_A, alt, OrloEvent::NodesSelectAllSounding},
        {Qt::Key_A, alt | shift, OrloEvent::None},
        {Qt::Key_N, alt | control | shift, OrloEvent::NodesResetAllDeselect},
        {Qt::Key_N, alt, OrloEvent::NodesResetAll},
        {Qt::Key_R, alt | control, OrloEvent::NodesResetAllAndControlsDeselect},
        {Qt::Key_R, alt | shift, OrloEvent::NodesResetAllAndControls},
        {Qt::Key_T, alt, OrloEvent::NodesToggleAllSelected},
        {Qt::Key_X, alt, OrloEvent::NodesResetSelectedDeselect},
        {Qt::Key_Z, alt | control, OrloEvent::NodesResetSelectedDeselect},
        {Qt::Key_Z, alt, OrloEvent::NodesResetSelected},
        {Qt::Key_Escape, control | alt, OrloEvent::AllNotesOffForced},
        {Qt::Key_Escape, alt, OrloEvent::NodesDeselectAll},
        {Qt::Key_Escape, shift, OrloEvent::AllNotesOff},
        {Qt::Key_M, shift, OrloEvent::MonophonicSet},
        {Qt::Key_P, Qt::NoModifier, OrloEvent::MonophonicSet},
    };
    for (const auto& [key, modifiers, type] : rows) {
        press(key, modifiers);
        const QList<Command> queued = commands();
        EXPECT_EQ(queued.size(), type == OrloEvent::None ? 0 : 1) << key << ' ' << modifiers;
        EXPECT_EQ(queued.value(0, {OrloEvent::None, 0.0F}).first, type) << key << ' ' << modifiers;
        report();
    }
}

TEST_F(KeyMapTest, VolumeKeysStopAtTheirEnds)
{
    QSlider* volume = slider("volumeSlider");
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, int, int> rows[] = {
        {Qt::Key_K, Qt::NoModifier, 1, 1},       {Qt::Key_K, Qt::NoModifier, 2, 0},
        {Qt::Key_K, Qt::ControlModifier, 90, 0}, {Qt::Key_O, Qt::NoModifier, 138, 140},
        {Qt::Key_O, Qt::NoModifier, 139, 139},   {Qt::Key_O, Qt::ControlModifier, 3, 105}};
    for (const auto& [key, modifiers, before, after] : rows) {
        volume->setValue(before);
        QTest::keyClick(window.get(), key, modifiers);
        EXPECT_EQ(volume->value(), after) << key << ' ' << before;
    }
}

TEST_F(KeyMapTest, ArrowKeysChooseARowAndXSwitchesItsPrime)
{
    const std::tuple<Qt::Key, int, Qt::Key, OrloEvent::Type, float> rows[] = {
        {Qt::Key_Up, 1, Qt::Key_Right, OrloEvent::TransposeByPrimeStep, 2.0F}, // the first row already
        {Qt::Key_Down, 3, Qt::Key_X, OrloEvent::PrimeEnabledToggle, 7.0F},
        {Qt::Key_Down, 12, Qt::Key_Left, OrloEvent::TransposeByPrimeStep, -31.0F},
        {Qt::Key_Up, 10, Qt::Key_Backspace, OrloEvent::TransposeByPrimeStep, 0.0F},
        {Qt::Key_Down, 1, Qt::Key_Right, OrloEvent::TransposeByPrimeStep, 3.0F}};
    for (const auto& [move, times, act, type, value] : rows) {
        for (int i = 0; i < times; ++i)
            press(move);
        press(act);
        EXPECT_EQ(commands(), (QList<Command>{{type, value}}));
        report();
    }
}
