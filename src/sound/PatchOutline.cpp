#include "sound/PatchOutline.h"

#include <QFile>
#include <QFileInfo>

namespace {

/// "inlet~" of "#X obj 20 20 inlet~ fwd"; empty for a statement that makes no object.
QByteArray objectName(const QByteArray& statement)
{
    if (!statement.startsWith("#X obj "))
        return QByteArray();
    return statement.split(' ').value(4).split(',').value(0); // a width may follow
}

} // namespace

PatchOutline PatchOutline::read(const QString& path)
{
    PatchOutline outline;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return outline;
    outline.readable = true;
    const QByteArray text = file.readAll();

    int depth = 0;
    qsizetype begin = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i; // whatever follows is escaped
        } else if (text[i] == ';') {
            const QByteArray statement = text.mid(begin, i - begin).simplified() + ' ';
            begin = i + 1;
            if (statement.startsWith("#N canvas "))
                ++depth;
            else if (statement.startsWith("#X restore "))
                --depth;
            if (depth != 1)
                continue;
            const QByteArray name = objectName(statement);
            outline.inlets += name == "inlet" || name == "inlet~" ? 1 : 0;
            outline.outlets += name == "outlet" || name == "outlet~" ? 1 : 0;
        }
    }
    outline.endsInsideSubpatch = depth > 1; // the outermost canvas has no end of its own
    return outline;
}
