#include "app/Settings.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

const QString FILE_NAME = u"options.json"_s;

/// All keys but the two that name folders of this machine.
constexpr const char* DEFAULTS = R"({
    "audioDevice": -1, "framesPerBuffer": 256, "midiOutDevice": "deactivated", "midiOutChannel": 0,
    "midiOutMpeZone": false, "helmholtzEllis": false, "harmonyPanel": false, "harmonyPanelFloats": false,
    "baseFrequency": 440, "calibrationFrequency": 440, "baseNote": "A 4", "baseNoteFreqRatio": 1,
    "masterVolume": 0.75, "monophonic": false, "defaultPatch": "Sine.pd", "softNodeReset": false,
    "circlesView": false, "absRelView": 1, "udpPort": 8888, "windowSize": "-1,-1", "windowPos": "-1,-1",
    "windowMaximized": false, "orloZoomMode": 6, "updateCheckInterval": 1, "tSysLastUpdateCheck": "",
    "ratiosWithinOctave": true, "centralNodeColourRelativeMode": true, "soundGrapeNotation": 0,
    "oneOneMenuSplitOctaves": false, "glissOneRangeCents": 1200, "glissTwoRangeCents": 100,
    "glissRangeMPECents": 0, "maintainMacroParameters": false, "centsShowDecimals": 0,
    "mainPatchNumberOfVoices": 128})";

/// No value as it is by default. What is a float is exact in one.
constexpr const char* OTHERS = R"({
    "audioDevice": 3, "framesPerBuffer": 64, "midiOutDevice": "Größe 1,5", "midiOutChannel": 15,
    "midiOutMpeZone": true, "helmholtzEllis": true, "harmonyPanel": true, "harmonyPanelFloats": true,
    "baseFrequency": 261.6255653, "calibrationFrequency": 442.5, "baseNote": "Bb3", "baseNoteFreqRatio": 0.59375,
    "masterVolume": 0.125, "monophonic": true, "defaultPatch": "/a/b.pd", "softNodeReset": true,
    "circlesView": true, "absRelView": 2, "udpPort": 65535, "windowSize": "1234,567", "windowPos": "-20,0",
    "windowMaximized": true, "orloZoomMode": 0, "updateCheckInterval": 7, "tSysLastUpdateCheck": "1.5",
    "ratiosWithinOctave": false, "centralNodeColourRelativeMode": false, "soundGrapeNotation": 2,
    "oneOneMenuSplitOctaves": true, "glissOneRangeCents": 0.5, "glissTwoRangeCents": 2400.25,
    "glissRangeMPECents": 1150, "maintainMacroParameters": true, "centsShowDecimals": 2,
    "mainPatchNumberOfVoices": 4, "lastBrowsedPatchPath": "/tmp", "lastDirPath": "/"})";

QJsonObject object(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

class SettingsTest : public LocaleTest
{
protected:
    static QJsonObject written(const Settings& settings)
    {
        QJsonObject json;
        settings.write(json);
        return json;
    }

    /// The defaults, with the two folders as they are here.
    QJsonObject defaults() const
    {
        QJsonObject json = object(DEFAULTS);
        json[u"lastBrowsedPatchPath"_s] = QDir::homePath();
        json[u"lastDirPath"_s] = home.path(u"chord_presets"_s);
        return json;
    }

    /// Loads a file of this content into `settings`, with no word in the log.
    void load(const QByteArray& json)
    {
        home.write(FILE_NAME, json);
        const LogCatcher log;
        EXPECT_TRUE(settings.init());
        EXPECT_TRUE(log.lines().isEmpty());
    }

    const TestHome home;
    Settings settings;
};

TEST_F(SettingsTest, EveryKeyIsReadAndWrittenBack)
{
    EXPECT_TRUE(settings.init()); // a first start writes all defaults
    EXPECT_EQ(home.read(FILE_NAME), QJsonDocument(defaults()).toJson(QJsonDocument::Indented));
    for (const char* json : {"{}", "[]", R"({"unknown": 1})"}) {
        load(json);
        EXPECT_EQ(written(settings), defaults()) << json;
    }
    load(OTHERS);
    EXPECT_EQ(written(settings), object(OTHERS));
    EXPECT_EQ(settings.windowSize, QSize(1234, 567));
    settings.term();
    EXPECT_EQ(object(home.read(FILE_NAME)), object(OTHERS));

    // Each key alone leaves all others as they were; with a value of another type, itself too.
    const QJsonObject all = object(OTHERS);
    const QJsonArray others{u"0.5"_s, 1, true, QJsonValue(), QJsonObject()};
    for (auto it = all.begin(); it != all.end(); ++it) {
        Settings fresh;
        for (const QJsonValue& other : others) {
            if (other.type() != it.value().type())
                fresh.read(QJsonObject{{it.key(), other}});
        }
        EXPECT_EQ(written(fresh), defaults()) << it.key().toStdString();
        fresh.read(QJsonObject{{it.key(), it.value()}});
        QJsonObject expected = defaults();
        expected[it.key()] = it.value();
        EXPECT_EQ(written(fresh), expected) << it.key().toStdString();
    }
}

TEST_F(SettingsTest, NumbersAreCutAndPairsAreSplit)
{
    const std::pair<double, int> numbers[] = {
        {3.9, 3}, {-3.9, -3}, {0.999, 0}, {1e300, 2147483647}, {-1e300, -2147483647 - 1}};
    for (const auto& [number, cut] : numbers) {
        settings.read(QJsonObject{{u"udpPort"_s, number}});
        EXPECT_EQ(settings.udpPort, cut);
    }
    const std::pair<const char*, QSize> pairs[] = {
        {"800", {-1, -1}},           {"", {-1, -1}}, {"800,x", {800, 0}},    {"x,600", {0, 600}},
        {"800,600,400", {800, 600}}, {",", {0, 0}},  {"800.5,0x10", {0, 0}}, {"99999999999,-5", {0, -5}},
    };
    for (const auto& [text, size] : pairs) {
        const QString value = QLatin1StringView(text);
        settings.windowSize = QSize(-1, -1);
        settings.windowPos = QPoint(-1, -1);
        settings.read(QJsonObject{{u"windowSize"_s, value}, {u"windowPos"_s, value}});
        EXPECT_EQ(settings.windowSize, size) << text;
        EXPECT_EQ(settings.windowPos, QPoint(size.width(), size.height())) << text;
    }
}

TEST_F(SettingsTest, ASyntaxErrorKeepsTheDefaultsAndTheFile)
{
    for (const char* json : {"", "{\"masterVolume\": 0.5", "{\"masterVolume\": 0,5}", "\xff\xfe"}) {
        home.write(FILE_NAME, json);
        const LogCatcher log;
        EXPECT_FALSE(settings.init());
        EXPECT_TRUE(
            log.has(QtCriticalMsg, u"Couldn't parse file %1. JSON error: "_s.arg(home.path(FILE_NAME))));
        EXPECT_EQ(written(settings), defaults());
        EXPECT_EQ(home.read(FILE_NAME), json);
    }
}

TEST_F(SettingsTest, WhatIsLostInReadingIsSetAsideBeforeTheNextSave)
{
    int copies = 0;
    const std::pair<const char*, bool> rows[] = {
        {"{}", false},
        {OTHERS, false},
        {R"({"masterVolume": 0.1, "baseFrequency": 440.123456789, "unknown": 1, "udpPort": 3.0})", false},
        {R"({"masterVolume": 0.1, )", true},
        {"[]", true},
        {R"({"udpPort": 3.5})", true},
        {R"({"udpPort": 4294967296})", true},
        {R"({"masterVolume": "0.1"})", true},
    };
    for (const auto& [json, lost] : rows) {
        home.write(FILE_NAME, json);
        const LogCatcher log;
        Settings fresh;
        fresh.init();
        fresh.term();
        copies += lost ? 1 : 0;
        EXPECT_EQ(home.configDir().entryList({FILE_NAME + u".bad-*"_s}).size(), copies) << json;
    }
}

TEST_F(SettingsTest, AFolderOrFileThatCannotBeWritten)
{
    home.configDir().mkpath(FILE_NAME);
    const LogCatcher log;
    EXPECT_FALSE(settings.init());
    EXPECT_FALSE(settings.save());
    for (const char* what : {"saving.", "loading."})
        EXPECT_TRUE(log.has(QtCriticalMsg, u"Couldn't open file %1 for %2"_s.arg(home.path(FILE_NAME),
                                                                                 QLatin1StringView(what))));
}

} // namespace
