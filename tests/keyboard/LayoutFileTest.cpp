#include "keyboard/LayoutFile.h"
#include "files/SetAside.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QList<Layout> oneOfEachKind()
{
    QList<Layout> layouts(Layout::KINDS);
    for (int kind = 0; kind < Layout::KINDS; ++kind)
        layouts[kind].kind = static_cast<Layout::Kind>(kind);
    layouts[0] = {.name = u"Mäuse \"1\""_s, .enabled = false, .inputs = {u"A:in 1"_s, u"B"_s}};
    layouts[0].learned.keys = {{{0, 60}, OrloRatio(3, 2)}, {{16, 127}, OrloRatio(~0ULL, ~0ULL - 1)}};
    layouts[1].firstChannel = 2;
    layouts[1].lastChannel = 15;
    layouts[1].rootKey = 0;
    layouts[1].twelve = {.primeLimit = 31, .window = 0.1};
    layouts[2].generators = {.along = OrloPathUnlimited(u"/3/-5/31"_s),
                             .across = OrloPathUnlimited(),
                             .rows = Layout::Generators::Rows::OfChannels,
                             .rowLength = 128,
                             .rootChannel = 16};
    layouts[3].scala.scale = ScalaScale(u"x"_s, {ScalaPitch::ofCents(100.0 / 3.0), ScalaPitch::ofCents(-1e-7),
                                                 ScalaPitch::of(OrloRatio(2, 1))});
    layouts[3].scala.keyboard =
        ScalaKeyboard{.first = -5, .referenceFrequency = 261.6255653, .degrees = {0, std::nullopt, -7}};
    layouts[4].harmonics = {.first = 1024, .octaves = 10};
    layouts[5].harmonics = {.beyond31 = Layout::Harmonics::Beyond31::Silent};
    return layouts;
}

} // namespace

TEST(LayoutFile, EveryKindComesBackAsItWasWritten)
{
    const QList<Layout> layouts = oneOfEachKind();
    const LayoutFile::Reading reading = LayoutFile::fromText(LayoutFile::text(layouts));
    EXPECT_EQ(reading.complaints, QStringList());
    ASSERT_EQ(reading.layouts.size(), layouts.size());
    for (int i = 0; i < layouts.size(); ++i)
        EXPECT_EQ(reading.layouts[i], layouts[i]) << i;
}

// Each stands between two good ones.
TEST(LayoutFile, AWrongLayoutIsToldAndTheOthersAreTaken)
{
    const struct
    {
        QByteArray json;
        int layouts, complaints;
    } cases[] = {
        {R"({"kind": "twelve"})", 3, 0},
        {R"({"kind": "twelve", "ofALaterVersion": 5})", 3, 0},
        {R"({"kind": "thirteen"})", 2, 1},
        {R"({"kind": 1})", 2, 1},
        {R"(17)", 2, 1},
        {R"({"kind": "twelve", "primeLimit": 9})", 2, 1},
        {R"({"kind": "twelve", "primeLimit": 37})", 2, 1},
        {R"({"kind": "twelve", "window": -1})", 2, 1},
        {R"({"kind": "twelve", "window": "wide"})", 2, 1},
        {R"({"kind": "twelve", "rootKey": 128})", 2, 1},
        {R"({"kind": "twelve", "rootKey": 60.5})", 2, 1},
        {R"({"kind": "twelve", "firstChannel": 0})", 2, 1},
        {R"({"kind": "twelve", "enabled": "yes"})", 2, 1},
        {R"({"kind": "twelve", "inputs": ["a", 5]})", 2, 1},
        {R"({"kind": "twelve", "inputs": "a"})", 2, 1},
        {R"({"kind": "generators", "along": "/4"})", 2, 1},
        {R"({"kind": "generators", "along": "/3/"})", 2, 1},
        {R"({"kind": "generators", "across": ")" + QByteArray("/3").repeated(101) + R"("})", 2, 1},
        {R"({"kind": "generators", "rowLength": 0})", 2, 1},
        {R"({"kind": "scala"})", 2, 1},
        {R"({"kind": "scala", "scale": {"pitches": ["3/2", 5]}})", 2, 1},
        {R"({"kind": "scala", "scale": {"pitches": ["697//441"]}})", 2, 1},
        {R"({"kind": "scala", "scale": {}, "keyboard": 5})", 2, 1},
        {R"({"kind": "scala", "scale": {}, "keyboard": {"degrees": [0, "x"]}})", 2, 1},
        {R"({"kind": "harmonics", "octaves": 1e300})", 2, 1},
        {R"({"kind": "learned", "keys": [{"key": 1, "ratio": "3/2"}, {"key": 2, "ratio": "3/0"}]})", 3, 1},
        {R"({"kind": "learned", "keys": [{"ratio": "3/2"}, {"key": 3, "ratio": "701.955"}, 5]})", 3, 1},
    };
    const QByteArray good = R"({"kind": "harmonics"})";
    for (const auto& [json, layouts, complaints] : cases) {
        const LayoutFile::Reading reading =
            LayoutFile::fromText(R"({"layouts": [)" + good + ',' + json + ',' + good + "]}");
        EXPECT_EQ(reading.layouts.size(), layouts) << json.toStdString();
        EXPECT_EQ(reading.complaints.size(), complaints) << json.toStdString();
    }
    EXPECT_EQ(
        LayoutFile::fromText(R"({"layouts": [)" + (good + ',').repeated(299) + good + "]}").layouts.size(),
        LayoutFile::MAX_LAYOUTS);
}

TEST(LayoutFile, AFileThatCannotBeReadWholeIsMarkedToBeSetAside)
{
    const TestHome home;
    const QString path = home.path(LayoutFile::NAME);
    EXPECT_TRUE(LayoutFile::read(path).complaints.isEmpty());
    EXPECT_FALSE(QFile::exists(path)) << "a file that nobody asked for";

    LogCatcher log;
    home.write(LayoutFile::NAME, LayoutFile::text(oneOfEachKind()));
    EXPECT_EQ(LayoutFile::read(path).layouts.size(), Layout::KINDS);
    EXPECT_FALSE(SetAside::isMarked(path));
    for (const char* text : {
             "",
             "[]",
             "{\"layouts\": 5}",
             "{\"layouts\": [{\"kind\": 5}]}",
             "{\"layouts\": [",
         }) {
        log.clear();
        home.write(LayoutFile::NAME, text);
        EXPECT_TRUE(LayoutFile::read(path).layouts.isEmpty());
        EXPECT_TRUE(SetAside::isMarked(path)) << text;
        EXPECT_TRUE(log.has(QtWarningMsg, path)) << text;
        SetAside::copyMarked(path);
    }
}
