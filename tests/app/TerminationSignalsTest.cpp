#include "app/Accessors.h"
#include "app/EndRequest.h"
#include "app/ProgramFixture.h"
#include "support/LogCatcher.h"

#include <QElapsedTimer>

#include <cerrno>
#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;

TEST(TerminationSignalsTest, TakeNothingButARequest)
{
    const LogCatcher quiet;
    int count = 1;
    char* arguments[] = {const_cast<char*>("program"), nullptr};
    const QApplication application(count, arguments);
    std::signal(SIGHUP, SIG_IGN); // as nohup does
    {
        const TerminationSignals watch;
        std::raise(SIGHUP);
        EXPECT_FALSE(EndRequest::isMade);
        errno = ENOENT;
        for (int i = 0; i < 100000; ++i) // more than a pipe holds
            std::raise(SIGTERM);
        EXPECT_EQ(errno, ENOENT);
        EXPECT_TRUE(EndRequest::isMade);
        QCoreApplication::processEvents();
        EXPECT_TRUE(watch.wasAsked());
    }
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
    EXPECT_EQ(std::signal(SIGTERM, SIG_DFL), SIG_DFL);
}

class WithAVoice : public ProgramFixture
{
};

TEST_F(WithAVoice, ThatLoopsARequestIsServedAtOnce)
{
    home.write(u"loop.pd"_s, "#N canvas 0 0 9 9 12;\n#X obj 9 9 inlet;\n#X obj 9 9 outlet~;\n"
                             "#X obj 9 9 loadbang;\n#X obj 9 9 until;\n#X connect 2 0 3 0;\n");
    ASSERT_TRUE(start());
    const QString former = app::settings()->defaultPatch;
    std::thread system([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::raise(SIGTERM);
    });
    QElapsedTimer timer;
    timer.start();
    application.mainWindow()->loadPatch(home.path(u"loop.pd"_s));
    EXPECT_LT(timer.elapsed(), 1500);
    system.join();
    EXPECT_TRUE(boxes.isEmpty()) << "nobody would close it";
    EXPECT_EQ(app::settings()->defaultPatch, former);
}
