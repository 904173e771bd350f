#include "memory/ChordPresets.h"

#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

class Presets : public ::testing::Test
{
protected:
    Presets()
    {
        home.configDir().mkpath(QStringLiteral("chord_presets"));
        home.configDir().mkpath(QStringLiteral("outside"));
        home.write(QStringLiteral("outside/dear.txt"), "dear");
    }

    bool dearIsThere() const { return home.read(QStringLiteral("outside/dear.txt")) == "dear"; }
    /// Everything in the home, but for what is in the presets directory.
    QStringList outside() const
    {
        return home.configDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
               + QDir(home.path(QStringLiteral("outside"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    const TestHome home;
    const ChordPresets presets{home.path(QStringLiteral("chord_presets"))};
    const QString bank = QStringLiteral("Bank");
};

TEST_F(Presets, MakesListsAndRemoves)
{
    EXPECT_TRUE(presets.makeBank(QStringLiteral("Zweite Bänke")));
    EXPECT_TRUE(presets.makeBank(bank));
    EXPECT_FALSE(presets.makeBank(bank));
    EXPECT_EQ(presets.banks(), (QStringList{bank, QStringLiteral("Zweite Bänke")}));

    EXPECT_TRUE(presets.makePreset(bank, QStringLiteral("My chords.v2")));
    EXPECT_FALSE(presets.makePreset(bank, QStringLiteral("My chords.v2")));
    EXPECT_TRUE(presets.presetExists(bank, QStringLiteral("My chords.v2")));
    EXPECT_EQ(home.read(QStringLiteral("chord_presets/Bank/My chords.v2.btoc")), "");
    home.write(QStringLiteral("chord_presets/Bank/other.txt"), "x");
    EXPECT_EQ(presets.presets(bank), QStringList{QStringLiteral("My chords.v2")});

    presets.removePreset(bank, QStringLiteral("My chords.v2"));
    presets.removePreset(bank, QStringLiteral("absent"));
    EXPECT_TRUE(presets.presets(bank).isEmpty());
    presets.removeBank(bank);
    presets.removeBank(bank);
    EXPECT_EQ(presets.banks(), QStringList{QStringLiteral("Zweite Bänke")});
}

TEST_F(Presets, WhatIsNoNameTouchesNothing)
{
    ASSERT_TRUE(presets.makeBank(bank));
    const QStringList before = outside();
    const QStringList bad{QString(),
                          QStringLiteral("."),
                          QStringLiteral(".."),
                          QStringLiteral("..."),
                          QStringLiteral("   "),
                          QStringLiteral("*"),
                          QStringLiteral("12"),
                          QStringLiteral("/"),
                          QStringLiteral("a/b"),
                          QStringLiteral("/tmp/a"),
                          QStringLiteral("../a"),
                          QStringLiteral("a/../../outside/b"),
                          QStringLiteral("a..b"),
                          QStringLiteral("..a"),
                          QStringLiteral(".hidden"),
                          QStringLiteral("a\\b"),
                          QStringLiteral("a\nb"),
                          QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b")),
                          QString(300, u'n')};
    for (const QString& name : bad) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_FALSE(presets.makeBank(name));
        EXPECT_FALSE(presets.makePreset(bank, name));
        EXPECT_FALSE(presets.presetExists(bank, name));
    }
    for (const QString& name : {QStringLiteral(".."), QStringLiteral("."), QString(), QStringLiteral("../outside")}) {
        presets.removeBank(name);
        EXPECT_TRUE(presets.presets(name).isEmpty());
        EXPECT_FALSE(presets.makePreset(name, QStringLiteral("a")));
    }
    presets.removePreset(bank, QStringLiteral("../../outside/dear"));
    EXPECT_EQ(outside(), before);
    EXPECT_TRUE(dearIsThere());
    EXPECT_EQ(presets.banks(), QStringList{bank});
    EXPECT_TRUE(presets.presets(bank).isEmpty());
}

TEST_F(Presets, RemovingABankNeverFollowsALink)
{
    ASSERT_TRUE(presets.makeBank(bank));
    const QString target = home.path(QStringLiteral("outside"));
    const QString inside = presets.bankPath(bank);
    ASSERT_TRUE(QDir().mkpath(inside + QStringLiteral("/deep/er")));
    ASSERT_TRUE(QFile::link(target, inside + QStringLiteral("/folder")));
    ASSERT_TRUE(QFile::link(target, inside + QStringLiteral("/deep/er/folder")));
    ASSERT_TRUE(QFile::link(target + QStringLiteral("/dear.txt"), inside + QStringLiteral("/dear.btoc")));
    presets.removePreset(bank, QStringLiteral("dear"));
    EXPECT_TRUE(dearIsThere());
    ASSERT_TRUE(QFile::link(target + QStringLiteral("/dear.txt"), inside + QStringLiteral("/dear.btoc")));
    presets.removeBank(bank);
    EXPECT_FALSE(QFileInfo::exists(inside));
    EXPECT_TRUE(dearIsThere());

    ASSERT_TRUE(QFile::link(target, presets.bankPath(QStringLiteral("Linked"))));
    EXPECT_EQ(presets.banks(), QStringList{QStringLiteral("Linked")});
    presets.removeBank(QStringLiteral("Linked"));
    EXPECT_TRUE(presets.banks().isEmpty());
    EXPECT_TRUE(dearIsThere());

    // Nor does a new preset write through a link that leads nowhere.
    ASSERT_TRUE(presets.makeBank(bank));
    ASSERT_TRUE(QFile::link(target + QStringLiteral("/new.txt"), inside + QStringLiteral("/new.btoc")));
    EXPECT_FALSE(presets.makePreset(bank, QStringLiteral("new")));
    EXPECT_FALSE(QFileInfo::exists(target + QStringLiteral("/new.txt")));
}

TEST_F(Presets, WithoutADirectoryThereIsNothing)
{
    for (const QString& path : {QString(), home.path(QStringLiteral("absent")), home.path(QStringLiteral("outside/dear.txt"))}) {
        const ChordPresets none(path);
        EXPECT_FALSE(none.directoryExists());
        EXPECT_TRUE(none.banks().isEmpty());
        EXPECT_FALSE(none.makeBank(bank));
        EXPECT_FALSE(none.makePreset(bank, QStringLiteral("a")));
        none.removeBank(bank);
    }
    EXPECT_TRUE(dearIsThere());
}
