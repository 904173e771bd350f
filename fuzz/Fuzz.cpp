#include "fuzz/Fuzz.h"

#include <QCoreApplication>
#include <QFile>
#include <QString>

#include <cstdio>
#include <cstdlib>

namespace {

// A line for the shortest entry of a map is some ten times as long as the entry.
constexpr qsizetype LOGGED_FOR_A_BYTE = 64;
constexpr qsizetype LOGGED_FOR_NOTHING = 4096;

qsizetype logged = 0; // characters, of this input

void countLog(QtMsgType, const QMessageLogContext&, const QString& text)
{
    logged += text.size();
}

void makeApplication()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
    qInstallMessageHandler(countLog);
}

} // namespace

void fuzz::run(Target target, const std::uint8_t* data, std::size_t size)
{
    if (!QCoreApplication::instance())
        makeApplication();
    const auto length = static_cast<qsizetype>(size);
    logged = 0;
    target(QByteArray::fromRawData(reinterpret_cast<const char*>(data), length)); // a read beyond it is seen
    FUZZ_REQUIRE(logged <= LOGGED_FOR_NOTHING + LOGGED_FOR_A_BYTE * length);
}

const TestHome& fuzz::cleanHome()
{
    static const TestHome home;
    const QDir folder = home.configDir();
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden))
        QFile::remove(folder.filePath(name));
    return home;
}

void fuzz::fail(const char* property, const char* file, int line)
{
    std::fprintf(stderr, "%s:%d: this does not hold: %s\n", file, line, property);
    std::abort();
}
