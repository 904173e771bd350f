#pragma once

#include "files/WholeFile.h"

#include <QObject>
#include <QSet>

class QWidget;

/// Tells the player of files that could not be read or written, in boxes that nothing waits for. What goes
/// on, such as a full disk, is told once until a save succeeds. [gui]
class FileTrouble : public QObject
{
    Q_OBJECT

public:
    /// From now on it hears of every file that is written. A data folder in which nothing can be written is
    /// told of at once.
    FileTrouble(QWidget* window, const QString& dataFolder);
    /// No other thread may be writing.
    ~FileTrouble() override;

    /// Sets a marked file of the running program aside now, while the player is there to be told.
    void keepMarked(const QString& path);
    /// Moves a marked file out of the way of the next start. What became of it, for the player; logged too.
    static QString moveMarked(const QString& path);

private:
    void checkFolder();
    void take(const WholeFile::Outcome& outcome);
    void takeFailure(const WholeFile::Outcome& outcome);
    bool isOwn(const QString& path) const;
    void tell(const QString& text);
    void tellSetAside(const QString& path, const QString& place);

    QWidget* mWindow;
    QString mFolder;
    QSet<QString> mFailing; // own files
    QSet<QString> mTold;    // reasons
    bool mFolderTold = false;
};
