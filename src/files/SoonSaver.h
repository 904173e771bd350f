#pragma once

#include "files/WholeFile.h"

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <chrono>
#include <functional>
#include <vector>

/// Files that follow what is in memory, within three seconds after a change. [gui]
///
/// Every second or so it asks for each file's content, and what differs is written by a thread of its own:
/// a slow disk holds up neither the window nor the sound. While a write is under way there is no other, and
/// the next one takes the newest content. What cannot be written is tried again when it changes, and now and
/// then.
class SoonSaver : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds INTERVAL{1500};
    static constexpr std::chrono::seconds RETRY{30};

    struct Source
    {
        QString path;
        std::function<QByteArray()> content;
    };
    /// A file that is there counts as saved, as long as its content stays as it is now.
    explicit SoonSaver(const QList<Source>& sources);
    /// Waits like wait().
    ~SoonSaver() override;

    /// Until no write is under way.
    void wait();
    /// The same, so that the caller may write the files. What it writes is not known here, so the next check
    /// writes them too.
    void letOthersWrite();
    void check();

private:
    struct File
    {
        Source source;
        QByteArray saved;
        QByteArray tried; // last
        QElapsedTimer sinceTry;
        bool fails = false;
    };
    struct Job
    {
        size_t file;
        QString path;
        QByteArray content;
        int othersWrote;
        WholeFile::Outcome outcome;
    };

    static bool isDue(const File& file, const QByteArray& content);
    void finish(const std::vector<Job>& jobs);

    std::vector<File> mFiles;
    QTimer mTimer;
    bool mUnderWay = false;
    int mOthersWrote = 0; // times
    QThreadPool mWriter;  // of one thread; the first to go
};
