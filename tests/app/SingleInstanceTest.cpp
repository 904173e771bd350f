#include "app/SingleInstance.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QWidget>

#include <future>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Entry = SingleInstance::Entry;

namespace {

class OneCopy : public ::testing::Test
{
protected:
    /// As another process would, while this one's event loop runs.
    static Entry later(const QString& folder)
    {
        auto entry = std::async(std::launch::async, [folder] { return SingleInstance(folder).enter(); });
        EXPECT_TRUE(waitUntil([&] { return entry.wait_for(0s) == std::future_status::ready; }));
        return entry.get();
    }

    const TestHome home;
    const QString folder = home.configDir().path();
    int mCount = 1;
    char* mArguments[2] = {const_cast<char*>("program"), nullptr};
    QApplication application{mCount, mArguments};
};

} // namespace

TEST_F(OneCopy, ALaterOneShowsTheFirstOfItsFolderOnly)
{
    ASSERT_TRUE(QFile::link(folder, home.path(u"way"_s)));
    QWidget window;
    window.showMinimized();
    int shown = 0;
    SingleInstance first(folder);
    EXPECT_EQ(first.enter(), Entry::First);
    first.answer(&application, [&] {
        ++shown;
        SingleInstance::bringToFront(&window);
    });
    EXPECT_EQ(later(folder), Entry::Answered);
    EXPECT_EQ(later(home.path(u"way"_s)), Entry::Answered);
    EXPECT_EQ(shown, 2);
    EXPECT_FALSE(window.isMinimized());
    EXPECT_EQ(later(home.path(u"not made yet"_s)), Entry::First);
    EXPECT_EQ(SingleInstance(folder).enter(200ms), Entry::Unheard) << "nobody runs the event loop";
}

TEST_F(OneCopy, WhatADeadOneLeftLocksNobodyOut)
{
    QByteArray mine;
    {
        auto first = std::make_unique<SingleInstance>(folder);
        ASSERT_EQ(first->enter(), Entry::First);
        mine = home.read(u".lock"_s);
        auto next = std::async(std::launch::async, [this] { return SingleInstance(folder).enter(); });
        EXPECT_EQ(next.wait_for(200ms), std::future_status::timeout);
        first.reset(); // while the next one waits for its answer
        EXPECT_EQ(next.get(), Entry::First);
    }
    ASSERT_TRUE(mine.startsWith(QByteArray::number(QCoreApplication::applicationPid()) + '\n'));
    const QByteArray others =
        "1" + mine.mid(mine.indexOf('\n')); // a process of another program has the number now
    for (const QByteArray& left : {mine, others, QByteArray(), QByteArray("no lock")}) {
        home.write(u".lock"_s, left);
        EXPECT_EQ(SingleInstance(folder).enter(), Entry::First) << left.toStdString();
    }
}

TEST_F(OneCopy, WhereNoLockCanBeMadeTheProgramStarts)
{
    SingleInstance first(folder);
    EXPECT_TRUE(home.whenNoFileCanBeMade([&] { return first.enter() == Entry::First; }));
    const LogCatcher log;
    first.answer(&application, [] {});
    EXPECT_TRUE(waitUntil([&] { return log.has(QtWarningMsg, folder + u"/.lock"_s); }));
}
