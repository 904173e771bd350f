#include "app/FileTrouble.h"

#include "files/SetAside.h"
#include "files/WriteAccess.h"
#include "ui/dialogs/NonModalBox.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>

FileTrouble::FileTrouble(QWidget* window, const QString& dataFolder)
    : QObject(window)
    , mWindow(window)
    , mFolder(dataFolder)
{
    // Queued: it may come from another thread, and after the last event there is nobody to tell.
    WholeFile::setListener([this](const WholeFile::Outcome& outcome) {
        QMetaObject::invokeMethod(
            this, [this, outcome] { take(outcome); }, Qt::QueuedConnection);
    });
    checkFolder();
}

FileTrouble::~FileTrouble()
{
    WholeFile::setListener({});
}

/// A file that is there can be written even where no new one can be made.
void FileTrouble::checkFolder()
{
    const QString reason = whyNotWritable(mFolder);
    if (reason.isEmpty() || whyNotWritable(mFolder + QStringLiteral("/options.json")).isEmpty())
        return;
    const QString text = QStringLiteral("Nothing can be saved in %1: %2.\n\nYou can play. Options and chords "
                                        "stay as they are there.")
                             .arg(mFolder, reason);
    qCritical().noquote() << text;
    tell(text);
    mFolderTold = true;
}

void FileTrouble::keepMarked(const QString& path)
{
    const SetAside::Result kept = SetAside::copyMarked(path);
    if (kept.isNew)
        tellSetAside(path, kept.place);
}

QString FileTrouble::moveMarked(const QString& path)
{
    if (!SetAside::isMarked(path))
        return QString();
    const SetAside::Result moved = SetAside::moveMarked(path);
    QString text;
    if (!moved.reason.isEmpty())
        text = QStringLiteral("%1 could not be read, and not be set aside: %2.").arg(path, moved.reason);
    else if (moved.place.isEmpty())
        text = QStringLiteral("%1 was empty. The next start makes a new one.").arg(path);
    else
        text = QStringLiteral("%1 could not be read and was set aside as %2. The next start makes a new one.")
                   .arg(path, moved.place);
    qCritical().noquote() << text;
    return text;
}

void FileTrouble::take(const WholeFile::Outcome& outcome)
{
    if (!outcome.copy.isEmpty())
        tellSetAside(outcome.path, outcome.copy);
    if (!outcome) {
        takeFailure(outcome);
        return;
    }
    mFolderTold = mFolderTold && !isOwn(outcome.path);
    mFailing.remove(outcome.path);
    if (mFailing.isEmpty())
        mTold.clear();
}

void FileTrouble::takeFailure(const WholeFile::Outcome& outcome)
{
    QString text =
        outcome.step == WholeFile::Outcome::NotSetAside
            ? QStringLiteral("%1 could not be read whole, and no copy of it can be made: %2.\n\nNothing is "
                             "saved over it.")
            : QStringLiteral("%1 could not be saved: %2.\n\nWhat was saved before is kept.");
    if (isOwn(outcome.path)) {
        mFailing.insert(outcome.path);
        if (mFolderTold || mTold.contains(outcome.reason))
            return;
        mTold.insert(outcome.reason);
        text += QStringLiteral(" You can play on, and saving is tried again by itself.");
    }
    tell(text.arg(outcome.path, outcome.reason));
}

/// The running program's, which are saved again and again; a preset is saved when the player asks for it.
bool FileTrouble::isOwn(const QString& path) const
{
    return QFileInfo(path).absolutePath() == QDir(mFolder).absolutePath();
}

void FileTrouble::tell(const QString& text)
{
    showNonModalBox(mWindow, QMessageBox::Warning, text);
}

void FileTrouble::tellSetAside(const QString& path, const QString& place)
{
    tell(QStringLiteral("Something in %1 could not be read.\n\nAs it was, it lies in %2.").arg(path, place));
}
