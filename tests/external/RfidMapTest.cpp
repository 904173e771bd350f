#include "external/RfidMap.h"

#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

const QString FILE_NAME = u"rfid_map.json"_s;
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
        said.append(u"FAILED"_s);
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
    const QStringList names = DATA.entryList({u"*.json"_s}, QDir::Files);
    ASSERT_GE(names.size(), 6);
    for (const QString& name : names) {
        const QByteArray expected = contentOf(DATA.filePath(name).replace(u".json"_s, u".txt"_s));
        QStringList lines = QString::fromUtf8(expected).split(u'\n', Qt::SkipEmptyParts);
        lines.sort();
        RfidMap map;
        const QStringList said = readingOf(contentOf(DATA.filePath(name)), map);
        EXPECT_EQ(said.join(u'\n').toStdString(), lines.join(u'\n').toStdString()) << name.toStdString();
    }
}

TEST(RfidMap, FindsEventsByTheFirstTenCharactersCaseAside)
{
    RfidMap map;
    readingOf(R"({"ABCDEF0123XYZ": {"event": 19, "value": 0.5}, "short": {"value": "/3/-5"}})", map);
    const OrloEvent* event = map.lookup(u"AbCdEf0123"_s);
    ASSERT_NE(event, nullptr);
    EXPECT_EQ(event->type(), OrloEvent::MasterVolumeSet);
    EXPECT_EQ(event->value(), 0.5F);
    EXPECT_EQ(map.lookup(u"ABCDEF0123XYZ"_s), nullptr);
    EXPECT_EQ(map.lookup(QString()), nullptr);

    const auto* note = dynamic_cast<const OrloNoteEvent*>(map.lookup(u"SHORT"_s));
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(note->type(), OrloEvent::NoteToggleByPath);
    EXPECT_EQ(note->value(), 1.0F);
    EXPECT_EQ(note->path().toString(), u"/3/-5"_s);

    QJsonObject written;
    map.write(written);
    const QByteArray expected =
        R"({"abcdef0123": {"event": 19, "value": 0.5}, "short": {"event": 0, "value": "/3/-5"}})";
    EXPECT_EQ(written, QJsonDocument::fromJson(expected).object());
}

TEST(RfidMap, AMissingFileIsMadeEmpty)
{
    const TestHome home;
    EXPECT_TRUE(RfidMap().init());
    EXPECT_EQ(QJsonDocument::fromJson(home.read(FILE_NAME)), QJsonDocument(QJsonObject()));
}
