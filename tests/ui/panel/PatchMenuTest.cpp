#include "ui/panel/PatchMenu.h"
#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "support/Waiting.h"
#include "ui/WindowFixture.h"

#include <QComboBox>
#include <QTimer>

using namespace Qt::StringLiterals;

class PatchMenuTest : public WindowFixture
{
protected:
    PatchMenuTest()
    {
        home.write(u"no.pd"_s, "#N canvas 0 0 200 200 12;\n#X obj 1 1 outlet~;\n");
        home.write(u"cut.pd"_s, CUT_SHORT);
        EXPECT_TRUE(QFile::copy(menu()->currentData().toString(), mine));
    }
    QComboBox* menu() const { return find<QComboBox>("patchMenu"); }
    QString fileOf(int index) const { return menu()->itemText(index) + u".pd"_s; }

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

    static constexpr const char* CUT_SHORT = "#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 s 0;\n";
    const QString mine = home.path(u"My voice.pd"_s);
    BoxAnswers boxes;
};

TEST_F(PatchMenuTest, APatchJoinsTheMenuOnceAndIsToldTheSliders)
{
    QComboBox first;
    PatchMenu another(&first, &player, &settings);
    run([&] { another.loadPatch(home.path(u"no.pd"_s)); });
    EXPECT_EQ(first.currentText(), u"None loaded");
    QObject::connect( // asks during the change
        &another, &PatchMenu::patchOpened, &another,
        [&] { another.loadPatch(menu()->currentData().toString()); }, Qt::SingleShotConnection);
    run([&] { another.loadPatch(mine); });
    EXPECT_EQ(first.count(), 2);
    EXPECT_EQ(first.currentText(), menu()->currentText());

    const int count = menu()->count();
    slider("macroSlider8")->setValue(30); // the patch has no such macro
    settle();
    QList<std::pair<int, float>> macros;
    QObject::connect(&player, qOverload<int, float>(&PdPlayer::macroValueChanged), window.get(),
                     [&macros](int macro, float value) {
                         macros.append({macro, value});
                     });
    load(mine);
    EXPECT_TRUE(macros.contains(std::pair(8, 0.25F)));
    load(mine);
    EXPECT_EQ(menu()->count(), count + 1);
    EXPECT_EQ(menu()->currentText(), u"My voice");
    EXPECT_EQ(settings.defaultPatch, u"My voice.pd");

    menu()->setCurrentIndex(0);
    const EngineClock clock(player);
    for (const auto& [step, index] : {std::pair("patchDecButton", count), {"patchIncButton", 0}}) {
        button(step)->click(); // goes around
        EXPECT_EQ(menu()->currentIndex(), index);
    }
}

TEST_F(PatchMenuTest, BeforeTheFirstChoiceOfAFileItIsSaidWhatAVoiceCanDo)
{
    for (const int shown : {2, 1}) { // once a run
        button("loadPatchButton")->click();
        EXPECT_EQ(boxes.take().size(), shown);
    }
    settings.lastBrowsedPatchPath = home.path({});
    openWindow();
    button("loadPatchButton")->click();
    EXPECT_EQ(boxes.take(), QStringList(u"Open Patch"_s));
}

TEST_F(PatchMenuTest, StepsThatComeTogetherOpenTheVoiceWhereTheyEnd)
{
    const int count = menu()->count();
    const std::tuple<int, int, int> rows[] = {
        // up, down, voices that are opened: by the first step at once, and where the others lead
        {1, 0, 1},
        {200, 3, 2},
        {3, 200, 2},
        {count + 1, 0, 1},
    };
    const LogCatcher log;
    const auto loads = [&log] { return log.count(QtWarningMsg, u"Loading voice patch"_s); };
    for (const auto& [up, down, opened] : rows) {
        SCOPED_TRACE(up - down);
        const int end = ((menu()->currentIndex() + up - down) % count + count) % count;
        const int before = loads();
        run([&, up = up, down = down, opened = opened] {
            for (int i = 0; i < up + down; ++i) {
                const OrloEvent step(OrloEvent::PatchStep, i < up ? 1.0F : 0.0F);
                player.queueEventSerial(&step);
            }
            EXPECT_TRUE(waitUntil([&] { return loads() == before + opened; }));
        });
        EXPECT_EQ(settings.defaultPatch, fileOf(end));
        EXPECT_EQ(menu()->currentIndex(), end);
        EXPECT_EQ(loads(), before + opened);
    }
    const auto stepTwice = [this] {
        button("patchIncButton")->click();
        button("patchIncButton")->click();
    };
    run([&] { // what the player chooses meanwhile counts
        stepTwice();
        window->patch_by_Index(1);
    });
    EXPECT_EQ(settings.defaultPatch, fileOf(1));
    run([&] { // while a box tells of a failure, steps wait
        QTimer::singleShot(0, menu(), stepTwice);
        window->loadPatch(home.path(u"no.pd"_s));
        EXPECT_EQ(settings.defaultPatch, fileOf(1));
        EXPECT_TRUE(waitUntil([this] { return settings.defaultPatch == fileOf(3); }));
    });
    EXPECT_EQ(boxes.take().size(), 1);
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
    QDir().mkpath(home.path(u"folder.pd"_s));
    const std::pair<const char*, const char*> rows[] = {
        {"no.pd", "no inlet"}, {"cut.pd", "cut short"}, {"folder.pd", "cannot be read"}};
    const LogCatcher quiet;
    for (const auto& [name, reason] : rows) {
        SCOPED_TRACE(name);
        const QString bad = home.path(QLatin1StringView(name));
        load(bad);
        const QString told = boxes.take().value(0);
        EXPECT_TRUE(told.startsWith(u"Failed to load patch %1."_s.arg(bad)));
        EXPECT_TRUE(told.contains(QLatin1StringView(reason))) << told.toStdString();
        EXPECT_EQ(menu()->currentText(), good);
        EXPECT_TRUE(player.isPatchOpen());
    }
    load(QString()); // the data of "None loaded": nothing happens
    EXPECT_EQ(toggles, 0);

    // What the check cannot foresee: the engine refuses the new one. It takes the
    // former one again, if it takes any.
    static const TestHome* runtime = nullptr;
    static const QByteArray mainPatch = home.read(u"patch/orlo_main.pd"_s);
    const auto mend = [](QtMsgType, const QMessageLogContext&, const QString& line) {
        if (runtime && line.startsWith(u"Failed to load"_s))
            runtime->write(u"patch/orlo_main.pd"_s, mainPatch);
    };
    const QtMessageHandler handler = qInstallMessageHandler(mend);
    for (const bool mended : {true, false}) {
        SCOPED_TRACE(mended);
        runtime = mended ? &home : nullptr;
        home.write(u"patch/orlo_main.pd"_s, CUT_SHORT);
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
