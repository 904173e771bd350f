#include "update/SafeFileName.h"

#include <QFile>
#include <QUrl>

#include <algorithm>

namespace {

constexpr qsizetype MAX_NAME_BYTES = 240; // with a number and ".part" what every file system takes

bool isPlainName(const QString& name)
{
    return !name.isEmpty() && !name.startsWith(u'.') && std::none_of(name.begin(), name.end(), [](QChar c) {
        const QChar::Category category = c.category();
        return c == u'/' || c == u'\\' || c == u':' || category == QChar::Other_Control
               || category == QChar::Separator_Line || category == QChar::Separator_Paragraph
               || category == QChar::Other_Format; // which could turn the name around
    });
}

} // namespace

bool safefilename::isSafe(const QString& name)
{
    return isPlainName(name) && isPlainName(QUrl::fromPercentEncoding(name.toUtf8()))
           && QFile::encodeName(name).size() <= MAX_NAME_BYTES;
}
