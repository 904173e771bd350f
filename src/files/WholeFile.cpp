#include "files/WholeFile.h"

#include "files/SetAside.h"
#include "files/WriteAccess.h"
#include "files/WriteThrough.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

namespace {

WholeFile::Listener theListener;

/// So that the file's new name outlives a power cut. Not every file system can; then nothing is lost but
/// that.
void synchroniseFolder(const QString& file)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(file).absolutePath());
    const int handle = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle == -1)
        return;
    fsync(handle);
    close(handle);
}

QString overwrite(QFile& file, const QByteArray& content)
{
    if (!file.seek(0))
        return file.errorString();
    const QString reason = writeThrough(file.handle(), content);
    return reason.isEmpty() && !file.resize(content.size()) ? file.errorString() : reason;
}

WholeFile::Outcome writeInPlace(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return {path, WholeFile::Outcome::NotOpened, file.errorString()};
    const QByteArray former = file.readAll();
    const QString reason = overwrite(file, content);
    if (reason.isEmpty())
        return {path};
    overwrite(file, former); // into the room that it had
    return {path, WholeFile::Outcome::NotWritten, reason};
}

WholeFile::Outcome replace(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        const QFileInfo former(path);
        if (former.isFile() && !whyNotWritable(former.canonicalPath()).isEmpty())
            return writeInPlace(path, content);
        return {path, WholeFile::Outcome::NotOpened, file.errorString()};
    }
    QString reason = writeThrough(file.handle(), content);
    if (!reason.isEmpty())
        file.cancelWriting();
    else if (!file.commit())
        reason = file.errorString();
    if (!reason.isEmpty())
        return {path, WholeFile::Outcome::NotWritten, reason};
    synchroniseFolder(path);
    return {path};
}

WholeFile::Outcome writeUntold(const QString& path, const QByteArray& content)
{
    const SetAside::Result aside = SetAside::copyMarked(path);
    if (!aside.reason.isEmpty())
        return {path, WholeFile::Outcome::NotSetAside, aside.reason};
    WholeFile::Outcome outcome = replace(path, content);
    if (aside.isNew)
        outcome.copy = aside.place;
    return outcome;
}

} // namespace

WholeFile::Outcome WholeFile::write(const QString& path, const QByteArray& content)
{
    Outcome outcome = writeUntold(path, content);
    if (theListener)
        theListener(outcome);
    return outcome;
}

void WholeFile::setListener(Listener listener)
{
    theListener = std::move(listener);
}
