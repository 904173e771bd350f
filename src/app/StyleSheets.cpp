#include "app/StyleSheets.h"

#include <QApplication>
#include <QDebug>
#include <QFile>
#include <QPalette>

namespace StyleSheets {

bool load(const QString& directory)
{
    const std::pair<QString, QString> sheets[] = {
        {directory + QStringLiteral("/style.qss"), QStringLiteral("Failed to find style sheet file %1.")},
        {directory + QStringLiteral("/style_mac.qss"),
         QStringLiteral("Failed to find platform-specific style sheet file %1.")},
    };
    QString text;
    for (const auto& [path, missing] : sheets) {
        QFile file(path);
        if (!file.exists()) {
            qCritical().noquote() << missing.arg(path);
            return false;
        }
        if (!file.open(QIODevice::ReadOnly)) {
            qCritical().noquote() << QStringLiteral("Failed to open file %1 for reading.").arg(path);
            return false;
        }
        text += QString::fromLatin1(file.readAll());
    }
    qApp->setStyleSheet(text);
    return true;
}

QPalette withLinkColours(QPalette palette)
{
    for (const QPalette::ColorRole role : {QPalette::Link, QPalette::LinkVisited})
        palette.setColor(role, QColor(0x8a, 0xb8, 0xff));
    return palette;
}

} // namespace StyleSheets
