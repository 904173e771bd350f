#include "sound/VoicePatchCheck.h"

#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>

namespace {

using namespace std::chrono_literals;

/// A voice with the sockets of one, and these objects and connections from number 3 on.
QByteArray sockets(const QByteArray& more)
{
    return "#N canvas 0 0 300 200 12;\n#X obj 9 9 inlet;\n#X obj 99 9 inlet~;\n#X obj 9 60 outlet~, f 9;\n"
           + more;
}

} // namespace

TEST(VoicePatchCheck, TellsAVoiceFromWhatIsNone)
{
    const QByteArray mute = plainVoice("1").replace("#X connect 12 0 11 0;\n", "");
    const std::pair<QByteArray, QString> rows[] = {
        // the voice, and part of what the player is told
        {plainVoice("1"), {}},
        {plainVoice("1").replace("*~ 0.1", "*~ 0"), {}}, // silent, but it names its macros
        {mute, {}},                                      // the other way round
        {plainVoice("1") + "#X text 9 9 \\; #N canvas 0 0 9 9 12 \\;;\n", {}}, // escaped, so no canvas
        {QByteArray(mute).replace("\\$1 5", "\\$1 900").replace("*~ 0.1", "*~ 0.0001"), {}},
        {"", QStringLiteral("no inlet")},
        {"this is no patch", QStringLiteral("no inlet")},
        {"#N canvas 0 0 200 200 12;\n#X obj 1 1 inlet;\n#X text 1 1 outlet;\n", QStringLiteral("no outlet")},
        {"#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 s 0;\n#X obj 1 1 inlet;\n"
         "#X restore 1 1 pd s;\n#X obj 1 1 outlet~;\n",
         QStringLiteral("no inlet")},
        {"#N canvas 0 0 200 200 12;\n#N canvas 0 0 200 200 s 0;\n#X obj 1 1 inlet;\n",
         QStringLiteral("cut short")},
        {sockets({}), QStringLiteral("nothing sounds")},
        {sockets("#X obj 9 90 no_such_object;\n#X connect 0 0 7 3;\n"), QStringLiteral("nothing sounds")},
        {sockets("#X obj 9 90 route gate;\n#X obj 9 90 until;\n#X obj 9 90 b;\n#X connect 0 0 3 0;\n"
                 "#X connect 3 0 5 0;\n#X connect 5 0 4 0;\n"),
         QStringLiteral("never comes up")},
        {sockets("#X msg 9 90 \\; pd quit;\n#X obj 9 90 loadbang;\n#X connect 4 0 3 0;\n"),
         QStringLiteral("end the program")},
    };
    const TestHome home;
    const QString file = home.path(QStringLiteral("voice.pd"));
    for (const auto& [voice, said] : rows) {
        SCOPED_TRACE(voice.right(200).toStdString());
        home.write(QStringLiteral("voice.pd"), voice);
        const QString reason = VoicePatchCheck(2000ms).whyNot(file);
        EXPECT_EQ(reason.isEmpty(), said.isEmpty()) << reason.toStdString();
        EXPECT_TRUE(reason.contains(said)) << reason.toStdString();
    }
    EXPECT_TRUE(VoicePatchCheck().whyNot(home.configDir().path()).contains(QStringLiteral("cannot be read")));

    const LogCatcher messages;
    EXPECT_EQ(VoicePatchCheck(2000ms, QStringLiteral("/no/such/trial")).whyNot(file), QString());
    EXPECT_EQ(messages.count(QtWarningMsg, QStringLiteral("could not be started")), 1);
}

TEST(VoicePatchCheck, TakesEveryVoiceOfTheProgram)
{
    const QDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/patches"));
    for (const QFileInfo& voice : folder.entryInfoList(QDir::Files))
        EXPECT_EQ(VoicePatchCheck().whyNot(voice.filePath()).toStdString(), "")
            << voice.fileName().toStdString();
}
