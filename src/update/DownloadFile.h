#pragma once

#include <QFile>
#include <QString>

/// A file that comes piece by piece. It grows under its name with ".part" behind it, and gets the name when
/// it is whole. Files that are there already are never touched: where a name is taken, a number joins it,
/// as in "orlo (1).dmg".
class DownloadFile
{
public:
    DownloadFile() = default;
    ~DownloadFile() { discard(); }
    DownloadFile(const DownloadFile&) = delete;
    DownloadFile& operator=(const DownloadFile&) = delete;

    /// Makes the part, in a folder that exists. False when it cannot be made.
    bool start(const QString& folder, const QString& name);
    /// False as soon as a byte finds no room.
    bool write(const QByteArray& bytes);
    /// Gives the whole file a free name. False, with the part removed, when it has none or is not whole.
    bool finish();
    /// Removes a part that is not finished; a finished file is only forgotten.
    void discard();

    /// Of the finished file.
    QString path() const { return mPath; }
    /// Why the last step failed, as a sentence for the player.
    QString error() const { return mError; }

    /// "name (2).ending" of "name.ending"; of number 0 the name itself.
    static QString numbered(const QString& name, int number);

private:
    bool failed(const QString& path, const QString& reason);
    bool makeNew(QFile& file, const QString& ending);

    QString mFolder;
    QString mName;
    QString mPath;
    QString mError;
    QFile mPart;         // open while it grows
    qint64 mWritten = 0; // bytes
};
