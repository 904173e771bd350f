#include "update/DownloadFile.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>

namespace {

constexpr int HIGHEST_NUMBER = 999;
const QString PART = QStringLiteral(".part");

/// Without a link being followed, which may lead nowhere.
bool isTaken(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

} // namespace

QString DownloadFile::numbered(const QString& name, int number)
{
    if (number == 0)
        return name;
    qsizetype dot = name.lastIndexOf(u'.');
    const qsizetype inner = name.left(qMax<qsizetype>(dot, 0)).lastIndexOf(u'.');
    if (inner > 0 && name.mid(inner, dot - inner) == QStringLiteral(".tar"))
        dot = inner;
    if (dot <= 0)
        dot = name.size();
    return QStringLiteral("%1 (%2)%3").arg(name.left(dot), QString::number(number), name.mid(dot));
}

bool DownloadFile::failed(const QString& path, const QString& reason)
{
    mError = QStringLiteral("\"%1\" cannot be written: %2.").arg(QDir::toNativeSeparators(path), reason);
    return false;
}

/// Opens a file that did not exist before, under the first name that is free.
bool DownloadFile::makeNew(QFile& file, const QString& ending)
{
    for (int number = 0; number <= HIGHEST_NUMBER; ++number) {
        file.setFileName(QDir(mFolder).filePath(numbered(mName, number) + ending));
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
            return true;
        if (!isTaken(file.fileName()))
            return failed(file.fileName(), file.errorString());
    }
    return failed(file.fileName(), QStringLiteral("there are too many files of this name"));
}

bool DownloadFile::start(const QString& folder, const QString& name)
{
    discard();
    mFolder = folder;
    mName = name;
    mWritten = 0;
    return makeNew(mPart, PART);
}

bool DownloadFile::write(const QByteArray& bytes)
{
    mWritten += bytes.size();
    for (qsizetype at = 0; at < bytes.size();) { // the last bytes that find room are no error yet
        const qint64 written = mPart.write(bytes.constData() + at, bytes.size() - at);
        if (written <= 0)
            return failed(mPart.fileName(), mPart.errorString());
        at += written;
    }
    return true;
}

bool DownloadFile::finish()
{
    const QString part = mPart.fileName();
    mPart.close();
    QFile place;
    bool done = QFileInfo(part).size() == mWritten || failed(part, QStringLiteral("it is not whole"));
    // An empty file of our own holds the name, and only this one is replaced.
    done = done && makeNew(place, QString());
    if (done
        && std::rename(QFile::encodeName(part).constData(), QFile::encodeName(place.fileName()).constData())
               != 0) {
        done = failed(place.fileName(), qt_error_string(errno));
        place.remove();
    }
    if (done)
        mPath = place.fileName();
    else
        QFile::remove(part);
    return done;
}

void DownloadFile::discard()
{
    if (mPart.isOpen())
        mPart.remove();
    mPath.clear();
}
