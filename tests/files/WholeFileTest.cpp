#include "files/WholeFile.h"
#include "files/SetAside.h"
#include "support/FullDisk.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QFile>

using namespace Qt::StringLiterals;

using Step = WholeFile::Outcome::Step;

class WholeFileTest : public ::testing::Test
{
protected:
    /// On a disk with so much room for each file.
    Step write(const QString& name, const QByteArray& content, rlim_t room = 10000)
    {
        const FullDisk disk(room);
        last = WholeFile::write(home.path(name), content);
        return last.step;
    }

    const TestHome home;
    const LogCatcher log;
    WholeFile::Outcome last;
};

TEST_F(WholeFileTest, AWriteThatFailsLeavesTheFormerFileAndNoOther)
{
    const QByteArray former(900, 'o');
    const QByteArray large(50000, 'n');
    home.write(u"old"_s, former);
    home.configDir().mkpath(u"folder"_s);
    EXPECT_EQ(write(u"old"_s, large), Step::NotWritten);
    EXPECT_EQ(last.reason, u"File too large"_s);
    EXPECT_EQ(write(u"new"_s, large), Step::NotWritten);
    EXPECT_EQ(write(u"folder"_s, "new"), Step::NotOpened);
    EXPECT_EQ(write(u"absent/x"_s, "new"), Step::NotOpened);
    // Where no file can be made the old one is written over, and gets its content back.
    EXPECT_TRUE(home.whenNoFileCanBeMade([&] { return write(u"old"_s, large) == Step::NotWritten; }));
    EXPECT_EQ(home.configDir().entryList(QDir::Files | QDir::Hidden), QStringList{u"old"_s});
    EXPECT_EQ(home.read(u"old"_s), former);
    EXPECT_TRUE(home.whenNoFileCanBeMade([&] { return write(u"old"_s, "short") == Step::Written; }));
    EXPECT_EQ(home.read(u"old"_s), "short");
}

TEST_F(WholeFileTest, WhatCouldNotBeReadIsCopiedOnceBeforeItIsWrittenOver)
{
    const QString path = home.path(u"old"_s);
    QStringList copies;
    for (const char* content : {"first", "second", "first", ""}) { // in one second, and none over another
        home.write(u"old"_s, content);
        SetAside::mark(path);
        EXPECT_EQ(write(u"old"_s, "new"), Step::Written);
        copies.append(last.copy);
        EXPECT_EQ(home.read(u"old"_s), "new");
        EXPECT_EQ(write(u"old"_s, "newer"), Step::Written);
        EXPECT_EQ(last.copy, QString()) << "the mark has gone";
    }
    EXPECT_TRUE(copies[0].startsWith(path + u".bad-20"_s));
    EXPECT_EQ(home.read(copies[0]), "first");
    EXPECT_EQ(home.read(copies[1]), "second");
    EXPECT_EQ(copies.mid(2), QStringList({QString(), QString()})) << "there already, and nothing to keep";
    EXPECT_EQ(log.count(QtWarningMsg, path + u" could not be read whole."_s), 2);

    // Without a copy nothing is written, however often.
    home.write(u"old"_s, "third");
    SetAside::mark(path);
    for (int again = 0; again < 2; ++again)
        EXPECT_EQ(write(u"old"_s, "new", 4), Step::NotSetAside);
    EXPECT_EQ(home.read(u"old"_s), "third");
    EXPECT_EQ(home.configDir().entryList(QDir::Files).size(), 3);
}
