#include "sound/OrloNoteEvent.h"
#include "support/EngineClock.h"
#include "support/LogCatcher.h"
#include "ui/WindowFixture.h"

#include <QComboBox>

class PatchMenuTest : public WindowFixture
{
protected:
    QComboBox* menu() const { return find<QComboBox>("patchMenu"); }

    template <class Action>
    void run(const Action& action)
    {
        {
            const EngineClock clock(player);
            action();
        }
        settle();
    }
    void load(const QString& path)
    {
        run([&] { window->loadPatch(path); });
    }

    BoxAnswers boxes;
};

TEST_F(PatchMenuTest, APatchFromElsewhereJoinsTheMenuOnce)
{
    const QString mine = home.path(QStringLiteral("My voice.pd"));
    ASSERT_TRUE(QFile::copy(menu()->currentData().toString(), mine));
    const int count = menu()->count();
    load(mine);
    load(mine);
    EXPECT_EQ(menu()->count(), count + 1);
    EXPECT_EQ(menu()->currentText(), QStringLiteral("My voice"));
    EXPECT_EQ(settings.defaultPatch, QStringLiteral("My voice.pd"));
}

TEST_F(PatchMenuTest, WhatIsNoVoiceIsNamedAndTheFormerPlaysOn)
{
    ASSERT_NE(menu()->currentIndex(), 0);
    const QString good = menu()->currentText();
    const OrloNoteEvent note(OrloRatio(1, 1));
    player.queueEventGui(&note);
    settle();
    int toggles = 0;
    QObject::connect(
        &player, &PdPlayer::noteToggled, &player, [&] { ++toggles; }, Qt::DirectConnection);
    home.write(QStringLiteral("no.pd"), "#N canvas 0 0 200 200 12;\n#X obj 1 1 outlet~;\n");
    home.write(QStringLiteral("cut.pd"), "#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 s 0;\n");
    QDir().mkpath(home.path(QStringLiteral("folder.pd")));
    const std::pair<const char*, const char*> rows[] = {
        {"no.pd", "no inlet"}, {"cut.pd", "cut short"}, {"folder.pd", "cannot be read"}};
    const LogCatcher quiet;
    for (const auto& [name, reason] : rows) {
        SCOPED_TRACE(name);
        const QString bad = home.path(QLatin1StringView(name));
        load(bad);
        const QString told = boxes.take().value(0);
        EXPECT_TRUE(told.startsWith(QStringLiteral("Failed to load patch %1.").arg(bad)));
        EXPECT_TRUE(told.contains(QLatin1StringView(reason))) << told.toStdString();
        EXPECT_EQ(menu()->currentText(), good);
        EXPECT_TRUE(player.isPatchOpen());
    }
    load(QString()); // the data of "None loaded": nothing happens
    EXPECT_EQ(toggles, 0);

    // What the check cannot foresee: the engine refuses the new one. It takes the
    // former one again, if it takes any.
    static const TestHome* runtime = nullptr;
    static const QByteArray mainPatch = home.read(QStringLiteral("patch/orlo_main.pd"));
    const auto mend = [](QtMsgType, const QMessageLogContext&, const QString& line) {
        if (runtime && line.startsWith(QStringLiteral("Failed to load")))
            runtime->write(QStringLiteral("patch/orlo_main.pd"), mainPatch);
    };
    const QtMessageHandler handler = qInstallMessageHandler(mend);
    for (const bool mended : {true, false}) {
        SCOPED_TRACE(mended);
        runtime = mended ? &home : nullptr;
        home.write(QStringLiteral("patch/orlo_main.pd"),
                   "#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 s 0;\n");
        run([this] {
            menu()->setCurrentIndex(0);
            emit menu()->activated(0);
        });
        EXPECT_EQ(boxes.take().size(), 1);
        EXPECT_EQ(menu()->currentText(), good) << "the menu goes back";
        EXPECT_EQ(player.isPatchOpen(), mended);
    }
    qInstallMessageHandler(handler);
}

TEST_F(PatchMenuTest, SteppingWraps)
{
    menu()->setCurrentIndex(0);
    const EngineClock clock(player);
    button("patchDecButton")->click();
    EXPECT_EQ(menu()->currentIndex(), menu()->count() - 1);
    button("patchIncButton")->click();
    EXPECT_EQ(menu()->currentIndex(), 0);
}
