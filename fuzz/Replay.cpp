// Runs fuzz targets over their folders of tests/data/fuzz: the seeds, and every input that ever failed.

#include "fuzz/Fuzz.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <map>
#include <string>

namespace {

std::map<std::string, fuzz::Target>& targets()
{
    static std::map<std::string, fuzz::Target> table;
    return table;
}

bool replay(const std::string& name)
{
    const auto target = targets().find(name);
    const QDir folder(QStringLiteral(ORLO_TEST_DATA "/fuzz/") + QString::fromStdString(name));
    const QStringList files = folder.entryList(QDir::Files);
    if (target == targets().end() || files.isEmpty()) {
        std::fprintf(stderr, "%s is no target with inputs.\n", name.c_str());
        return false;
    }
    for (const QString& fileName : files) {
        std::printf("%s/%s\n", name.c_str(), qPrintable(fileName));
        std::fflush(stdout);
        QFile file(folder.filePath(fileName));
        if (!file.open(QIODevice::ReadOnly))
            return false;
        const QByteArray input = file.readAll();
        fuzz::run(target->second, reinterpret_cast<const std::uint8_t*>(input.data()),
                  static_cast<std::size_t>(input.size()));
    }
    return true;
}

} // namespace

bool fuzz::enter(const char* name, Target target)
{
    return targets().emplace(name, target).second;
}

/// The arguments are names of targets.
int main(int argc, char** argv)
{
    bool good = argc > 1;
    for (int i = 1; i < argc; ++i)
        good = replay(argv[i]) && good;
    return good ? 0 : 1;
}
