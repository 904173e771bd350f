#include "files/WholeFile.h"

#include "files/SetAside.h"
#include "support/FullDisk.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

using Step = WholeFile::Outcome::Step;

class WholeFileTest : public ::testing::Test
{
protected:
    WholeFile::Outcome write(const QString& name, const QByteArray& content) const
    {
        return WholeFile::write(home.path(name), content);
    }
    QStringList files() const { return home.configDir().entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    const TestHome home;
    const LogCatcher quiet;
    const QByteArray large = QByteArray(50000, 'n');
};

TEST_F(WholeFileTest, AWriteThatFailsLeavesTheFormerFileAndNoOther)
{
    home.write(u"old"_s, "old");
    home.write(u"large"_s, QByteArray(9000, 'o'));
    home.configDir().mkpath(u"folder"_s);
    const std::tuple<QString, bool, Step> rows[] = {
        // file, on a full disk, what comes of it
        {u"old"_s, true, Step::NotWritten},      {u"large"_s, true, Step::NotWritten},
        {u"new"_s, true, Step::NotWritten},      {u"folder"_s, false, Step::NotOpened},
        {u"absent/x"_s, false, Step::NotOpened},
    };
    for (const auto& [name, full, step] : rows) {
        SCOPED_TRACE(name.toStdString());
        const QByteArray former = home.read(name);
        {
            const std::unique_ptr<FullDisk> disk(full ? new FullDisk(10000) : nullptr);
            const WholeFile::Outcome outcome = write(name, large);
            EXPECT_EQ(outcome.step, step);
            EXPECT_FALSE(outcome.reason.isEmpty() || outcome.reason == u"Unknown error"_s);
        }
        EXPECT_EQ(home.read(name), former);
        EXPECT_EQ(files(), (QStringList{u"large"_s, u"old"_s}));
    }
    EXPECT_TRUE(write(u"old"_s, large));
    EXPECT_TRUE(write(u"large"_s, "short"));
    EXPECT_EQ(home.read(u"old"_s), large);
    EXPECT_EQ(home.read(u"large"_s), "short");
}

TEST_F(WholeFileTest, WhereNoFileCanBeMadeTheOldOneIsWrittenOverOrGetsItsContentBack)
{
    home.write(u"old"_s, QByteArray(900, 'o'));
    const auto written = [&](const QByteArray& content, rlim_t room) {
        return home.whenNoFileCanBeMade([&] {
            const FullDisk disk(room);
            return static_cast<bool>(write(u"old"_s, content));
        });
    };
    EXPECT_FALSE(written(large, 10000));
    EXPECT_EQ(home.read(u"old"_s), QByteArray(900, 'o'));
    for (const QByteArray& content : {large, QByteArray("short")}) {
        EXPECT_TRUE(written(content, 100000));
        EXPECT_EQ(home.read(u"old"_s), content);
    }
    SetAside::mark(home.path(u"old"_s));
    EXPECT_FALSE(written("new", 100000)) << "no copy can be made";
    EXPECT_EQ(home.read(u"old"_s), "short");
}

TEST_F(WholeFileTest, WhatCouldNotBeReadIsCopiedBeforeItIsWrittenOver)
{
    const QString path = home.path(u"old"_s);
    QStringList copies;
    for (const QByteArray& content : {QByteArray("first"), QByteArray("second"), QByteArray("first")}) {
        home.write(u"old"_s, content);
        SetAside::mark(path);
        {
            const FullDisk disk(2);
            EXPECT_EQ(write(u"old"_s, "new").step, copies.size() < 2 ? Step::NotSetAside : Step::NotWritten);
            EXPECT_EQ(home.read(u"old"_s), content);
            EXPECT_EQ(files().size(), 1 + copies.size());
            SetAside::mark(path);
        }
        const WholeFile::Outcome outcome = write(u"old"_s, "new");
        EXPECT_TRUE(outcome);
        if (copies.size() < 2)
            copies.append(outcome.copy);
        else
            EXPECT_EQ(outcome.copy, QString()) << "once for each content";
        EXPECT_TRUE(write(u"old"_s, "newer").copy.isEmpty()) << "the mark has gone";
    }
    EXPECT_EQ(files().size(), 3);
    EXPECT_TRUE(copies[0].startsWith(path + u".bad-20"_s));
    EXPECT_EQ(home.read(copies[0]), "first"); // within one second, and neither over the other
    EXPECT_EQ(home.read(copies[1]), "second");
    EXPECT_EQ(quiet.count(QtWarningMsg, path + u" could not be read whole."_s), 2);

    // Nothing lies in an empty file, and what cannot be read cannot be copied.
    home.write(u"empty"_s, "");
    home.configDir().mkpath(u"unreadable"_s);
    for (const auto& [name, step] :
         {std::pair(u"empty"_s, Step::Written), {u"unreadable"_s, Step::NotSetAside}}) {
        SetAside::mark(home.path(name));
        EXPECT_EQ(write(name, "new").step, step);
    }
    EXPECT_EQ(files().size(), 4);
}
