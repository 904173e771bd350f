#include "app/SingleInstance.h"
#include "app/ProgramFixture.h"
#include "support/LogCatcher.h"
#include "support/Waiting.h"

#include <future>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Entry = SingleInstance::Entry;

class OneCopy : public ProgramFixture
{
protected:
    auto later(const QString& way)
    {
        return std::async(std::launch::async, [=] { return SingleInstance(way).enter(); });
    }
    const QString folder = home.configDir().path();
    std::unique_ptr<SingleInstance> first = std::make_unique<SingleInstance>(folder);
};

TEST_F(OneCopy, ALaterOneShowsTheFirstOfItsFolderOrTakesItsPlace)
{
    EXPECT_TRUE(home.whenNoFileCanBeMade([&] { return first->enter() == Entry::First; }));
    const LogCatcher log;
    first->answer(&application, {});
    EXPECT_TRUE(waitUntil([&] { return log.has(QtWarningMsg, folder + u"/.lock"_s); })) << "it goes without";

    ASSERT_EQ(first->enter(), Entry::First);
    QWidget window;
    window.showMinimized();
    auto listener = std::make_unique<QObject>();
    first->answer(listener.get(), [&] { SingleInstance::bringToFront(&window); });
    ASSERT_TRUE(QFile::link(folder, home.path(u"way"_s)));
    auto second = later(home.path(u"way"_s));
    EXPECT_TRUE(waitUntil([&] { return !window.isMinimized(); }));
    EXPECT_EQ(second.get(), Entry::Answered);
    auto third = later(folder);
    EXPECT_EQ(third.wait_for(200ms), std::future_status::timeout) << "nobody runs the event loop";
    listener.reset(); // as at the end
    first.reset();
    EXPECT_EQ(third.get(), Entry::First);
}

TEST_F(OneCopy, WhatADeadOneLeftLocksNobodyOut)
{
    ASSERT_EQ(first->enter(), Entry::First);
    const QByteArray lock = home.read(u".lock"_s); // begins with the number of this process
    first.reset();
    for (const QByteArray& left : {lock, "1" + lock.mid(lock.indexOf('\n')), QByteArray()}) {
        home.write(u".lock"_s, left);
        const auto isFirst = [&] { return SingleInstance(folder).enter() == Entry::First; };
        EXPECT_TRUE(home.whenNoFileCanBeMade(isFirst) && isFirst()) << left.toStdString();
    }
}
