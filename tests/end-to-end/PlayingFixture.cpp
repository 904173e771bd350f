#include "end-to-end/PlayingFixture.h"

#include "support/Tone.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <cmath>

using namespace Qt::StringLiterals;

static constexpr double RATE = VirtualDesk::SAMPLE_RATE;

void PlayingFixture::SetUp()
{
    ASSERT_TRUE(desk.isReady()) << "Xvfb or jackd does not start.";
    const QTemporaryDir elsewhere; // it must not leave files in the test's home
    QProcessEnvironment environment = desk.environment();
    environment.insert(u"XDG_DATA_HOME"_s, elsewhere.path());
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QCoreApplication::applicationDirPath() + u"/print_screen_map"_s, QStringList());
    ASSERT_TRUE(process.waitForFinished(60000));
    // The line may stand behind others: the sound libraries print too.
    const QByteArray printed = process.readAllStandardOutput();
    screen = QJsonDocument::fromJson(printed.mid(printed.indexOf("\n{") + 1).split('\n').first()).object();
    ASSERT_FALSE(screen.isEmpty()) << "print_screen_map gave no map.";
    recorder = std::make_unique<Recorder>(desk.soundServer());
    writeOptions({}); // so that no first steps lie over the lattice
}

QPoint PlayingFixture::place(const char* group, const char* name) const
{
    const QJsonArray point = screen[QLatin1StringView(group)][QLatin1StringView(name)].toArray();
    if (point.size() != 2)
        qFatal("The window has no %s among its %s.", name, group);
    return {point[0].toInt(), point[1].toInt()};
}

void PlayingFixture::start()
{
    program = std::make_unique<RunningProgram>(desk);
    ASSERT_TRUE(program->waitForWindow());
    ASSERT_TRUE(recorder->connectToProgram());
    ASSERT_TRUE(recorder->waitForSilence());
}

::testing::AssertionResult PlayingFixture::soundsAt(double frequency)
{
    if (!ear().waitForSound())
        return ::testing::AssertionFailure() << "nothing sounds";
    std::optional<double> found;
    // The stroke's first moment is no steady sine, nor is a stretch with missing blocks.
    for (int attempt = 0; attempt < 10 && !found; ++attempt)
        found = tone::pitchOfSine(ear().record(LISTENING), frequency, RATE);
    if (!found)
        return ::testing::AssertionFailure() << "what sounds is no sine near " << frequency;
    const double off = tone::centsBetween(*found, frequency);
    if (std::abs(off) > TOLERANCE_CENTS)
        return ::testing::AssertionFailure()
               << *found << " Hz, which is " << off << " cents off " << frequency;
    return ::testing::AssertionSuccess();
}

bool PlayingFixture::hears(double frequency)
{
    return waitUntil([&] { return tone::amplitudeAt(ear().record(LISTENING), frequency, RATE) > 0.01; });
}

bool PlayingFixture::hearsNoMore(double frequency)
{
    return waitUntil([&] { return tone::amplitudeAt(ear().record(LISTENING), frequency, RATE) < 0.0001; });
}

bool PlayingFixture::openOptions()
{
    return program->type(u"ctrl+comma"_s)
           && waitUntil([this] { return desk.window(u"Options"_s).has_value(); })
           && desk.act(u"windowfocus %1 key Tab Tab"_s.arg(desk.window(u"Options"_s)->id));
}

void PlayingFixture::expectOrderlyEnd(int signal)
{
    ASSERT_TRUE(program->type(u"f"_s));
    QElapsedTimer timer;
    timer.start();
    program->send(signal);
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

bool PlayingFixture::logs(const QString& text, qsizetype times) const
{
    return waitUntil([&] { return log().count(text) >= times; });
}

QString PlayingFixture::patchKey(const QString& patch)
{
    const QDir folder(QCoreApplication::applicationDirPath() + u"/patches"_s);
    const qsizetype index = folder.entryList({u"*.pd"_s}, QDir::Files, QDir::Name).indexOf(patch + u".pd"_s);
    return u"ctrl+%1"_s.arg((index + 1) % 10);
}
