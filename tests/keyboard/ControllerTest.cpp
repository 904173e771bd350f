// Which controller does what, and how it takes a slider over.

#include "keyboard/ControllerMap.h"
#include "keyboard/TakeOver.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

using namespace std::chrono_literals;

namespace {

TEST(TakeOverTest, BothEndsAndTheMiddleAreMet)
{
    const TakeOver::Slider plain{10, 130, 0};
    const TakeOver::Slider centred{0, 400, 0, true};
    const std::tuple<int, int, int> rows[] = {
        // value, in the plain slider and in the centred one
        {-5, 10, 0}, {0, 10, 0}, {1, 11, 3}, {32, 40, 100}, {64, 70, 200}, {127, 130, 400}, {200, 130, 400},
    };
    for (const auto& [value, inPlain, inCentred] : rows) {
        EXPECT_EQ(TakeOver::positionOf(value, plain), inPlain) << value;
        EXPECT_EQ(TakeOver::positionOf(value, centred), inCentred) << value;
    }
}

TEST(TakeOverTest, TheSliderStaysUntilItsPlaceIsPassed)
{
    // In a slider of 127 positions, so that a value is its position.
    struct Row
    {
        const char* when;
        int value;
        int slider;       // where it stands before, -1: where it is
        int milliseconds; // since the last row
        bool moves;
    };
    constexpr Row rows[] = {
        {"far below", 10, 60, 10, false},
        {"near, not there", 58, -1, 10, false},
        {"past it, over many values at once", 90, -1, 10, true},
        {"and further", 100, -1, 1000, true},
        {"back, at once", 20, -1, 1000, true},
        {"an echo of its own", 30, 100, 200, true},
        {"moved by something else", 40, 80, 1000, false},
        {"away from it", 30, -1, 1000, false},
        {"passed upwards", 81, -1, 1000, true},
        {"moved to beyond", 60, 10, 1000, false},
        {"a neighbouring value", 11, -1, 1000, true},
    };
    TakeOver takeOver;
    TakeOver::Slider slider{0, 127, 0};
    TakeOver::Time now;
    for (const Row& row : rows) {
        slider.now = row.slider < 0 ? slider.now : row.slider;
        now += std::chrono::milliseconds(row.milliseconds);
        const std::optional<int> position = takeOver.move(row.value, slider, now);
        EXPECT_EQ(position, row.moves ? std::optional(row.value) : std::nullopt) << row.when;
        slider.now = position.value_or(slider.now);
    }
}

TEST(TakeOverTest, ACoarseControllerCatchesASliderWithMorePositions)
{
    // 401 positions: three of them for a value.
    for (int stands = 0; stands <= 400; ++stands) {
        TakeOver takeOver;
        TakeOver::Slider slider{0, 400, stands};
        int moves = 0;
        for (int value = 0; value <= 127; ++value) {
            if (const auto position = takeOver.move(value, slider, {})) {
                EXPECT_LE(qAbs(*position - slider.now), 7) << "no jump at " << stands;
                slider.now = *position;
                ++moves;
            }
        }
        EXPECT_GT(moves, 0) << stands;
        EXPECT_EQ(slider.now, 400);
    }
}

TEST(ControllerMapTest, AControllerDoesOneThingAndTheFileKeepsIt)
{
    const ControllerSource knob{QStringLiteral("Keys \"A\":1"), 0, 21};
    const ControllerSource other{QStringLiteral("Keys \"A\":1"), 15, 21};
    ControllerMap map;
    map.learn(knob, ControllerTarget::fromId(QStringLiteral("volume")));
    map.learn(other, ControllerTarget::fromId(QStringLiteral("volume")));
    map.learn(knob, ControllerTarget::fromId(QStringLiteral("down7")));
    EXPECT_EQ(map.targetOf(knob), (ControllerTarget{ControllerTarget::TransposeDown, 7}));
    EXPECT_EQ(map.targetOf(other), (ControllerTarget{ControllerTarget::Volume, 0}));
    EXPECT_TRUE(map.targetOf({QStringLiteral("Keys"), 0, 21}).isNone());

    const QByteArray text = QJsonDocument(map.toJson()).toJson();
    EXPECT_EQ(ControllerMap::fromJson(QJsonDocument::fromJson(text).object()), map);
    map.remove(knob);
    EXPECT_TRUE(map.targetOf(knob).isNone());
    EXPECT_EQ(map.entries().size(), 1);
}

TEST(ControllerMapTest, EachTargetHasAnIdOfItsOwn)
{
    // Eight macros, three other sliders, eleven primes either way, twenty chords, two ways of patches.
    EXPECT_EQ(ControllerTarget::all().size(), 8 + 3 + 2 * 11 + 20 + 2);
    QStringList seen;
    for (const ControllerTarget& target : ControllerTarget::all()) {
        EXPECT_EQ(ControllerTarget::fromId(target.id()), target) << target.id().toStdString();
        EXPECT_FALSE(seen.contains(target.title()));
        seen.append(target.title());
    }
    EXPECT_TRUE(ControllerTarget::fromId({}).isNone());
}

TEST(ControllerMapTest, WhatAFileSaysWronglyIsLeftOut)
{
    const auto entry = [](const char* values) {
        return QByteArray(R"({"input": "a", "channel": 1, "controller": 7, "does": "volume", )") + values
               + '}';
    };
    const QByteArray bad[] = {
        entry(R"("channel": 0)"),
        entry(R"("channel": 17)"),
        entry(R"("channel": 1.5)"),
        entry(R"("channel": "1")"),
        entry(R"("controller": 128)"),
        entry(R"("controller": -1)"),
        entry(R"("controller": 1e300)"),
        entry(R"("does": "macro9")"),
        entry(R"("does": "")"),
        entry(R"("does": 3)"),
        entry(R"("input": "")"),
        "3",
        "[]",
    };
    for (const QByteArray& each : bad) {
        const QByteArray text = R"({"controllers": [)" + each + ", " + entry(R"("input": "b")") + "]}";
        int dropped = 0;
        const ControllerMap map = ControllerMap::fromJson(QJsonDocument::fromJson(text).object(), &dropped);
        EXPECT_EQ(dropped, 1) << each.toStdString();
        ASSERT_EQ(map.entries().size(), 1) << each.toStdString();
        EXPECT_EQ(map.entries()[0].source.input, QStringLiteral("b"));
    }
    int dropped = 0;
    const auto twice = "{\"controllers\": [" + entry(R"("x": 0)") + ',' + entry(R"("does": "macro1")") + "]}";
    const ControllerMap map = ControllerMap::fromJson(QJsonDocument::fromJson(twice).object(), &dropped);
    EXPECT_EQ(map.entries().size(), 1);
    EXPECT_EQ(dropped, 1) << "the first one counts";
    EXPECT_TRUE(ControllerMap::fromJson({{QStringLiteral("controllers"), 5}}, &dropped).entries().isEmpty());
    EXPECT_EQ(dropped, 1);
    EXPECT_TRUE(ControllerMap::fromJson({}, &dropped).entries().isEmpty());
    EXPECT_EQ(dropped, 0);
}

TEST(ControllerMapTest, OnlyControllersThatKeysLeaveAloneAreLearned)
{
    const QString input = QStringLiteral("in");
    EXPECT_EQ(ControllerSource::of(input, 0xB9, 1), (ControllerSource{input, 9, 1}));
    const std::pair<int, int> others[] = {{0x90, 1},  {0xE0, 1},   {0xB0, 6},   {0xB0, 38}, {0xB0, 64},
                                          {0xB0, 98}, {0xB0, 101}, {0xB0, 120}, {0xB0, 127}};
    for (const auto& [status, data] : others) {
        EXPECT_FALSE(
            ControllerSource::of(input, static_cast<std::uint8_t>(status), static_cast<std::uint8_t>(data)))
            << status << ' ' << data;
    }
}

} // namespace
