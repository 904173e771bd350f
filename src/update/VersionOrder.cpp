#include "update/VersionOrder.h"

#include <QStringList>

bool isNewerVersion(const QString& x, const QString& y)
{
    const QStringList xParts = x.split(u'.');
    const QStringList yParts = y.split(u'.');
    for (qsizetype i = 0; i < qMin(xParts.size(), yParts.size()); ++i) {
        const qlonglong xPart = xParts[i].toLongLong(); // 0 if unreadable
        const qlonglong yPart = yParts[i].toLongLong();
        if (xPart != yPart)
            return xPart > yPart;
    }
    return yParts.size() < xParts.size();
}
