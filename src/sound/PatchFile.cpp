#include "sound/PatchFile.h"

#include <QFile>

namespace PatchFile {

bool endsInsideSubpatch(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false; // libpd says what is wrong with it
    const QByteArray text = file.readAll();

    int depth = 0;
    qsizetype begin = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i; // whatever follows is escaped
        } else if (text[i] == ';') {
            const QByteArray statement = text.mid(begin, i - begin).simplified() + ' ';
            if (statement.startsWith("#N canvas "))
                ++depth;
            else if (statement.startsWith("#X restore "))
                --depth;
            begin = i + 1;
        }
    }
    return depth > 1; // the outermost canvas has no end of its own
}

} // namespace PatchFile
