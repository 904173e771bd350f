#include "memory/ChordPresets.h"

#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

class Presets : public ::testing::Test
{
protected:
    Presets()
    {
        home.configDir().mkpath(u"chord_presets"_s);
        home.configDir().mkpath(u"outside"_s);
        home.write(u"outside/dear.txt"_s, "dear");
    }

    bool isOutsideKept() const { return home.read(u"outside/dear.txt"_s) == "dear"; }
    /// Everything in the home, but for what is in the presets directory.
    QStringList outside() const
    {
        return home.configDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
               + QDir(home.path(u"outside"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    const TestHome home;
    const ChordPresets presets{home.path(u"chord_presets"_s)};
    const QString bank = u"Bank"_s;
};

TEST_F(Presets, MakesListsAndRemoves)
{
    EXPECT_TRUE(presets.makeBank(u"Zweite Bänke"_s));
    EXPECT_TRUE(presets.makeBank(bank));
    EXPECT_FALSE(presets.makeBank(bank));
    EXPECT_EQ(presets.banks(), (QStringList{bank, u"Zweite Bänke"_s}));

    const QString preset = u"My chords.v2"_s;
    EXPECT_TRUE(presets.makePreset(bank, preset));
    EXPECT_FALSE(presets.makePreset(bank, preset));
    EXPECT_TRUE(presets.presetExists(bank, preset));
    EXPECT_EQ(home.read(u"chord_presets/Bank/My chords.v2.btoc"_s), "");
    home.write(u"chord_presets/Bank/other.txt"_s, "x");
    EXPECT_EQ(presets.presets(bank), QStringList{preset});
    presets.removePreset(bank, preset);
    presets.removePreset(bank, u"absent"_s);
    EXPECT_TRUE(presets.presets(bank).isEmpty());
    EXPECT_TRUE(presets.makePreset(bank, preset));
    home.write(u"chord_presets/Bank/.hidden"_s, "x");
    QDir(presets.bankPath(bank)).mkpath(u"folder.btoc/deep"_s);
    const ChordPresets::Remains remains = presets.removeBank(bank);
    EXPECT_EQ(remains.folder, presets.bankPath(bank));
    EXPECT_EQ(QSet<QString>(remains.names.begin(), remains.names.end()),
              QSet<QString>({u"other.txt"_s, u".hidden"_s, u"folder.btoc"_s}));
    EXPECT_TRUE(QFileInfo::exists(presets.bankPath(bank) + u"/folder.btoc/deep"_s));
    EXPECT_FALSE(presets.presetExists(bank, preset));
    ASSERT_TRUE(QDir(presets.bankPath(bank)).removeRecursively());
    EXPECT_TRUE(presets.makeBank(bank) && presets.makePreset(bank, preset));
    for (int twice = 0; twice < 2; ++twice)
        EXPECT_EQ(presets.removeBank(bank).folder, QString());
    EXPECT_EQ(presets.banks(), QStringList{u"Zweite Bänke"_s});
}

TEST_F(Presets, WhatIsNoNameTouchesNothing)
{
    ASSERT_TRUE(presets.makeBank(bank));
    const QStringList before = outside();
    QStringList bad =
        u".|..|...|   |*|12|/|a/b|/tmp/a|../a|a/../../outside/b|a..b|..a|.hidden|a\\b"_s.split(u'|');
    bad << u"a\nb"_s << QString() << u"a"_s + QChar(0) + u'b' << QString(300, u'n');
    for (const QString& name : bad) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_FALSE(presets.makeBank(name));
        EXPECT_FALSE(presets.makePreset(bank, name));
        EXPECT_FALSE(presets.presetExists(bank, name));
    }
    for (const QString& name : {u".."_s, u"."_s, QString(), u"../outside"_s}) {
        presets.removeBank(name);
        EXPECT_TRUE(presets.presets(name).isEmpty());
        EXPECT_FALSE(presets.makePreset(name, u"a"_s));
    }
    presets.removePreset(bank, u"../../outside/dear"_s);
    EXPECT_EQ(outside(), before);
    EXPECT_TRUE(isOutsideKept());
    EXPECT_EQ(presets.banks(), QStringList{bank});
    EXPECT_TRUE(presets.presets(bank).isEmpty());
}

TEST_F(Presets, RemovingABankNeverFollowsALink)
{
    ASSERT_TRUE(presets.makeBank(bank));
    const QString target = home.path(u"outside"_s);
    const QString inside = presets.bankPath(bank);
    ASSERT_TRUE(QFile::link(target, inside + u"/folder.btoc"_s));
    ASSERT_TRUE(QFile::link(target + u"/dear.txt"_s, inside + u"/dear.btoc"_s));
    presets.removePreset(bank, u"dear"_s);
    EXPECT_TRUE(isOutsideKept());
    ASSERT_TRUE(QFile::link(target + u"/dear.txt"_s, inside + u"/dear.btoc"_s));
    ASSERT_TRUE(QFile::link(target + u"/nothing"_s, inside + u"/dead.btoc"_s));
    EXPECT_EQ(presets.removeBank(bank).names, QStringList{u"folder.btoc"_s});
    EXPECT_TRUE(isOutsideKept());
    ASSERT_TRUE(QDir(inside).removeRecursively());

    ASSERT_TRUE(QFile::link(target, presets.bankPath(u"Linked"_s)));
    EXPECT_EQ(presets.banks(), QStringList{u"Linked"_s});
    EXPECT_EQ(presets.removeBank(u"Linked"_s).folder, target);
    EXPECT_TRUE(presets.banks().isEmpty());
    EXPECT_TRUE(isOutsideKept());

    // Nor does a new preset write through a link that leads nowhere.
    ASSERT_TRUE(presets.makeBank(bank));
    ASSERT_TRUE(QFile::link(target + u"/new.txt"_s, inside + u"/new.btoc"_s));
    EXPECT_TRUE(presets.presetExists(bank, u"new"_s));
    EXPECT_FALSE(presets.makePreset(bank, u"new"_s));
    EXPECT_FALSE(QFileInfo::exists(target + u"/new.txt"_s));
}

TEST_F(Presets, WithoutADirectoryThereIsNothing)
{
    for (const QString& path : {QString(), home.path(u"absent"_s), home.path(u"outside/dear.txt"_s)}) {
        const ChordPresets none(path);
        EXPECT_FALSE(none.directoryExists());
        EXPECT_TRUE(none.banks().isEmpty());
        EXPECT_FALSE(none.makeBank(bank));
        EXPECT_FALSE(none.makePreset(bank, u"a"_s));
        none.removeBank(bank);
    }
    EXPECT_TRUE(isOutsideKept());
}
