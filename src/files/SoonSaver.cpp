#include "files/SoonSaver.h"

#include <QDebug>
#include <QFile>

SoonSaver::SoonSaver(const QList<Source>& sources)
{
    for (const Source& source : sources)
        mFiles.push_back({source, QFile::exists(source.path) ? source.content() : QByteArray(), {}, {}});
    mWriter.setMaxThreadCount(1);
    connect(&mTimer, &QTimer::timeout, this, &SoonSaver::check);
    mTimer.start(INTERVAL);
}

SoonSaver::~SoonSaver()
{
    wait();
}

void SoonSaver::wait()
{
    mWriter.waitForDone();
}

void SoonSaver::letOthersWrite()
{
    wait();
    ++mOthersWrote; // the last write may not have been reported yet
    for (File& file : mFiles)
        file.saved.clear();
}

void SoonSaver::check()
{
    if (mUnderWay)
        return;
    std::vector<Job> jobs;
    for (size_t i = 0; i < mFiles.size(); ++i) {
        File& file = mFiles[i];
        const QByteArray content = file.source.content();
        if (!isDue(file, content))
            continue;
        file.tried = content;
        file.sinceTry.start();
        jobs.push_back({i, file.source.path, content, mOthersWrote, {}});
    }
    if (jobs.empty())
        return;
    mUnderWay = true;
    mWriter.start([this, jobs = std::move(jobs)]() mutable {
        for (Job& job : jobs)
            job.outcome = WholeFile::write(job.path, job.content);
        QMetaObject::invokeMethod(
            this, [this, jobs] { finish(jobs); }, Qt::QueuedConnection);
    });
}

bool SoonSaver::isDue(const File& file, const QByteArray& content)
{
    if (content == file.saved)
        return false;
    return !file.fails || content != file.tried
           || std::chrono::milliseconds(file.sinceTry.elapsed()) >= RETRY;
}

void SoonSaver::finish(const std::vector<Job>& jobs)
{
    mUnderWay = false;
    for (const Job& job : jobs) {
        File& file = mFiles[job.file];
        if (job.outcome && job.othersWrote == mOthersWrote)
            file.saved = job.content;
        else if (!job.outcome && !file.fails) // the next tries say nothing
            qCritical().noquote() << QStringLiteral("Couldn't write file %1: %2. The old one is kept.")
                                         .arg(job.path, job.outcome.reason);
        file.fails = !job.outcome;
    }
}
