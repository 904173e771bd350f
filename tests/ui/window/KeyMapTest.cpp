#include "ui/WindowFixture.h"

#include <QTest>

using KeyMapTest = WindowFixture;

TEST_F(KeyMapTest, KeysQueueCommands)
{
    using E = OrloEvent;
    constexpr auto none = Qt::NoModifier;
    constexpr auto alt = Qt::AltModifier;
    constexpr auto control = Qt::ControlModifier;
    constexpr auto shift = Qt::ShiftModifier;
    struct Row
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        QList<Command> queued;
        int times = 1;
    };
    const Row rows[] = {
        {Qt::Key_A, alt, {{E::NodesSelectAllSounding, 1.0F}}},
        {Qt::Key_A, alt | shift, {}},
        {Qt::Key_N, alt | control | shift, {{E::NodesResetAllDeselect, 1.0F}}},
        {Qt::Key_N, alt, {{E::NodesResetAll, 1.0F}}},
        {Qt::Key_R, alt | control, {{E::NodesResetAllAndControlsDeselect, 1.0F}}},
        {Qt::Key_R, alt | shift, {{E::NodesResetAllAndControls, 1.0F}}},
        {Qt::Key_T, alt, {{E::NodesToggleAllSelected, 1.0F}}},
        {Qt::Key_X, alt, {{E::NodesResetSelectedDeselect, 1.0F}}},
        {Qt::Key_Z, alt | control, {{E::NodesResetSelectedDeselect, 1.0F}}},
        {Qt::Key_Z, alt, {{E::NodesResetSelected, 1.0F}}},
        {Qt::Key_Escape, control | alt, {{E::AllNotesOffForced, 1.0F}}},
        {Qt::Key_Escape, alt, {{E::NodesDeselectAll, 1.0F}}},
        {Qt::Key_Escape, shift, {{E::AllNotesOff, 1.0F}}},
        {Qt::Key_M, shift, {{E::MonophonicSet, 1.0F}}},
        {Qt::Key_P, none, {{E::MonophonicSet, 0.0F}}},
        // The arrows choose the row of a prime, from the first to the last.
        {Qt::Key_Up, none, {}},
        {Qt::Key_Right, none, {{E::TransposeByPrimeStep, 2.0F}}},
        {Qt::Key_Down, none, {}, 3},
        {Qt::Key_X, none, {{E::PrimeEnabledToggle, 7.0F}}},
        {Qt::Key_Down, none, {}, 12},
        {Qt::Key_Left, none, {{E::TransposeByPrimeStep, -31.0F}}},
        {Qt::Key_Up, none, {}, 10},
        {Qt::Key_Backspace, none, {{E::TransposeByPrimeStep, 0.0F}}},
        {Qt::Key_Down, none, {}},
        {Qt::Key_Right, none, {{E::TransposeByPrimeStep, 3.0F}}},
    };
    for (const Row& row : rows) {
        for (int i = 0; i < row.times; ++i)
            press(row.key, row.modifiers);
        EXPECT_EQ(commands(), row.queued) << row.key << ' ' << row.modifiers;
        report();
    }
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, int, int> volumes[] = {
        {Qt::Key_K, none, 1, 1},     {Qt::Key_K, none, 2, 0},     {Qt::Key_K, control, 90, 0},
        {Qt::Key_O, none, 138, 140}, {Qt::Key_O, none, 139, 139}, {Qt::Key_O, control, 3, 105}};
    for (const auto& [key, modifiers, before, after] : volumes) {
        slider("volumeSlider")->setValue(before);
        QTest::keyClick(window.get(), key, modifiers);
        EXPECT_EQ(slider("volumeSlider")->value(), after) << key << ' ' << before;
    }
}
