#include "external/RfidMap.h"

#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonDocument>

#include <cmath>

namespace {

const QString FILE_NAME = QStringLiteral("rfid_map.json");
const QDir DATA(QStringLiteral(ORLO_TEST_DATA "/rfid_maps"));

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/// What the map says while it is read, in the order of the alphabet; "FAILED" when it cannot be.
QStringList readingOf(const QByteArray& json, RfidMap& map)
{
    const TestHome home;
    home.write(FILE_NAME, json);
    const LogCatcher log;
    QStringList said;
    if (!map.init())
        said.append(QStringLiteral("FAILED"));
    for (const LogCatcher::Line& line : log.lines()) {
        if (line.type == QtWarningMsg)
            said.append(line.text);
    }
    said.sort();
    EXPECT_EQ(home.read(FILE_NAME), json);
    map.term();
    EXPECT_EQ(home.read(FILE_NAME), json) << "a map that was read is never written";
    return said;
}

} // namespace

// Beside each map lies a text that tells what must be said of it.
TEST(RfidMap, ReadsTheMapsOfTheFolderAsTheirTextsTell)
{
    const QStringList names = DATA.entryList({QStringLiteral("*.json")}, QDir::Files);
    ASSERT_GE(names.size(), 6);
    for (const QString& name : names) {
        QString expected = QString::fromUtf8(contentOf(DATA.filePath(name).replace(QStringLiteral(".json"),
                                                                                   QStringLiteral(".txt"))));
        QStringList lines = expected.split(u'\n', Qt::SkipEmptyParts);
        lines.sort();
        RfidMap map;
        const QStringList said = readingOf(contentOf(DATA.filePath(name)), map);
        EXPECT_EQ(said.join(u'\n').toStdString(), lines.join(u'\n').toStdString()) << name.toStdString();
    }
}

TEST(RfidMap, FindsEventsByTheFirstTenCharactersCaseAside)
{
    RfidMap map;
    EXPECT_EQ(map.lookup(QStringLiteral("abcdef0123")), nullptr);
    readingOf(R"({"ABCDEF0123XYZ": {"event": 19, "value": 0.5}, "short": {"value": "/3/-5"}})", map);
    const OrloEvent* event = map.lookup(QStringLiteral("AbCdEf0123"));
    ASSERT_NE(event, nullptr);
    EXPECT_EQ(event->type(), OrloEvent::MasterVolumeSet);
    EXPECT_EQ(event->value(), 0.5F);
    EXPECT_EQ(map.lookup(QStringLiteral("ABCDEF0123XYZ")), nullptr);
    EXPECT_EQ(map.lookup(QString()), nullptr);

    const auto* note = dynamic_cast<const OrloNoteEvent*>(map.lookup(QStringLiteral("SHORT")));
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(note->type(), OrloEvent::NoteToggleByPath);
    EXPECT_EQ(note->value(), 1.0F);
    EXPECT_EQ(note->path().toString(), QStringLiteral("/3/-5"));

    QJsonObject written;
    map.write(written);
    const QByteArray expected = R"({"abcdef0123": {"event": 19, "value": 0.5}, "short": {"event": 0, "value": "/3/-5"}})";
    EXPECT_EQ(written, QJsonDocument::fromJson(expected).object());
}

TEST(RfidMap, NumbersOutOfRangeNameNoEvent)
{
    RfidMap map;
    readingOf(R"({"a": {"event": 1e300, "value": 1e300}, "b": {"event": -5, "value": -1e300},
                  "c": {"event": 4294967297, "value": 2}, "d": {"event": 1.99, "value": 1e-300}})",
              map);
    EXPECT_EQ(map.lookup(QStringLiteral("a"))->type(), OrloEvent::None);
    EXPECT_EQ(map.lookup(QStringLiteral("a"))->value(), INFINITY);
    EXPECT_EQ(map.lookup(QStringLiteral("b"))->type(), -5);
    EXPECT_EQ(map.lookup(QStringLiteral("b"))->value(), -INFINITY);
    EXPECT_EQ(map.lookup(QStringLiteral("c"))->type(), OrloEvent::None);
    EXPECT_EQ(map.lookup(QStringLiteral("d"))->type(), OrloEvent::AllNotesOff);
    EXPECT_EQ(map.lookup(QStringLiteral("d"))->value(), 0.0F);
}

TEST(RfidMap, TakesFilesOfAnySize)
{
    QByteArray many = "{";
    for (int i = 0; i < 30000; ++i)
        many += QByteArray(i == 0 ? "" : ",") + "\"t" + QByteArray::number(i) + "\": {\"event\": 1, \"value\": 0.5}";
    many += "}";
    ASSERT_GT(many.size(), 1 << 20);
    RfidMap large;
    EXPECT_EQ(readingOf(many, large).size(), 30000);
    EXPECT_NE(large.lookup(QStringLiteral("T29999")), nullptr);

    RfidMap deep;
    const QByteArray nested = "{\"a\": " + QByteArray(100000, '[') + QByteArray(100000, ']') + "}";
    EXPECT_EQ(readingOf(nested, deep), QStringList(QStringLiteral("FAILED")));
    const QByteArray nestedLess = "{\"a\": {\"event\": 1, \"value\": " + QByteArray(500, '[') + QByteArray(500, ']') + "}}";
    RfidMap lessDeep;
    EXPECT_EQ(readingOf(nestedLess, lessDeep), QStringList(QStringLiteral("RFID a mapped to: event 1, value 0")));
}

TEST(RfidMap, AMissingFileIsMadeEmpty)
{
    const TestHome home;
    RfidMap map;
    EXPECT_TRUE(map.init());
    EXPECT_EQ(QJsonDocument::fromJson(home.read(FILE_NAME)), QJsonDocument(QJsonObject()));
}
