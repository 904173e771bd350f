#include "app/LogFilter.h"

namespace {

/// "PdPlayer" of "src/sound/PdPlayer.cpp"; null for a name without a separator.
QString sourceBaseName(const char* file)
{
    const QString path = QString::fromLocal8Bit(file);
    qsizetype separator = path.lastIndexOf(u'/');
    if (separator < 0)
        separator = path.lastIndexOf(u'\\');
    if (separator < 0)
        return QString();
    const QString name = path.mid(separator + 1);
    return name.left(name.lastIndexOf(u'.'));
}

} // namespace

void LogFilter::setWords(int argc, char** argv)
{
    mWords.clear();
    for (int i = 1; i < argc; ++i) {
        QString word = QString::fromLocal8Bit(argv[i]);
        if (word.startsWith(u'-'))
            word.remove(0, 1);
        mWords.insert(word.toLower());
    }
    isListening.store(!mWords.isEmpty());
}

bool LogFilter::passes(const char* file) const
{
    return mWords.isEmpty() || !sourceBaseName(file).isNull();
}

bool LogFilter::shows(const char* file) const
{
    if (mWords.isEmpty())
        return false;
    const QString source = sourceBaseName(file);
    return !source.isNull() && (mWords.contains(QStringLiteral("all")) || mWords.contains(source.toLower()));
}
