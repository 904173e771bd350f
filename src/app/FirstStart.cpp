#include "app/FirstStart.h"

#include <QFile>
#include <QString>

namespace FirstStart {

bool isNow(const QString& dataFolder)
{
    return !QFile::exists(dataFolder + QStringLiteral("/options.json"));
}

} // namespace FirstStart
