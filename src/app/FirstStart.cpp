#include "app/FirstStart.h"

#include <QFile>
#include <QString>

namespace FirstStart {

bool isNow(const QString& dataFolder)
{
    return qgetenv("ORLO_FIRST_STEPS") != "0" && !QFile::exists(dataFolder + QStringLiteral("/options.json"));
}

} // namespace FirstStart
