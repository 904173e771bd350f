#include "end-to-end/PlayingFixture.h"

#include "end-to-end/Waiting.h"
#include "support/Tone.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonDocument>

#include <cmath>
#include <csignal>

using namespace Qt::StringLiterals;

void PlayingFixture::SetUp()
{
    ASSERT_TRUE(desk.isReady()) << "Xvfb or jackd does not start.";
    screen = std::make_unique<ScreenMap>(desk);
    ASSERT_TRUE(screen->isValid()) << "print_screen_map gave no map.";
    recorder = std::make_unique<Recorder>(desk.soundServer());
}

void PlayingFixture::start()
{
    program = std::make_unique<RunningProgram>(desk);
    ASSERT_TRUE(program->waitForWindow());
    ASSERT_TRUE(recorder->connectToProgram());
    ASSERT_TRUE(recorder->waitForSilence());
}

double PlayingFixture::amplitudeNow(double frequency)
{
    return tone::amplitudeAt(ear().record(LISTENING), frequency, VirtualDesk::SAMPLE_RATE);
}

::testing::AssertionResult PlayingFixture::soundsAt(double frequency)
{
    if (!ear().waitForSound())
        return ::testing::AssertionFailure() << "nothing sounds";
    std::optional<double> found;
    // The stroke's first moment is no steady sine, nor is a stretch with missing blocks.
    for (int attempt = 0; attempt < 10 && !found; ++attempt)
        found = tone::pitch(ear().record(LISTENING), VirtualDesk::SAMPLE_RATE);
    if (!found)
        return ::testing::AssertionFailure() << "what sounds is no sine";
    const double off = tone::centsBetween(*found, frequency);
    if (std::abs(off) > MOST_CENTS_OFF)
        return ::testing::AssertionFailure()
               << *found << " Hz, which is " << off << " cents off " << frequency;
    return ::testing::AssertionSuccess();
}

bool PlayingFixture::hears(double frequency)
{
    return waitUntil([&] { return amplitudeNow(frequency) > 0.01; });
}

bool PlayingFixture::hearsNoMore(double frequency)
{
    return waitUntil([&] { return amplitudeNow(frequency) < 0.0001; });
}

void PlayingFixture::expectOrderlyEnd()
{
    ASSERT_TRUE(program->type(u"f"_s));
    QElapsedTimer timer;
    timer.start();
    ::kill(static_cast<pid_t>(program->processId()), SIGTERM);
    EXPECT_EQ(program->waitForExit(), 0);
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_TRUE(options()[u"circlesView"_s].toBool());
}

QJsonObject PlayingFixture::options() const
{
    return QJsonDocument::fromJson(home.read(u"options.json"_s)).object();
}

void PlayingFixture::writeOptions(const QJsonObject& options) const
{
    home.write(u"options.json"_s, QJsonDocument(options).toJson());
}

QString PlayingFixture::log() const
{
    return QString::fromUtf8(home.read(u"log.txt"_s));
}

QStringList PlayingFixture::voicePatches()
{
    const QDir folder(QCoreApplication::applicationDirPath() + u"/patches"_s);
    return folder.entryList({u"*.pd"_s}, QDir::Files, QDir::Name).replaceInStrings(u".pd"_s, QString());
}

QString PlayingFixture::patchKey(const QString& patch)
{
    const qsizetype index = voicePatches().indexOf(patch);
    if (index < 0 || index > 9)
        qFatal("No key chooses the patch %s.", qPrintable(patch));
    return u"ctrl+%1"_s.arg((index + 1) % 10);
}
