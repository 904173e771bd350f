#include "update/QSimpleUpdater.h"

#include <QCoreApplication>

#include <memory>

QSimpleUpdater* QSimpleUpdater::getInstance()
{
    static std::unique_ptr<QSimpleUpdater> instance;
    if (!instance) {
        instance.reset(new QSimpleUpdater);
        // Windows and connections must end before the application object does.
        qAddPostRoutine([] { instance.reset(); });
    }
    return instance.get();
}

Updater* QSimpleUpdater::getUpdater(const QString& url)
{
    Updater*& updater = mUpdaters[url];
    if (updater)
        return updater;
    updater = new Updater(this);
    updater->setUrl(url);
    connect(updater, &Updater::checkingFinished, this, &QSimpleUpdater::checkingFinished);
    connect(updater, &Updater::downloadFinished, this, &QSimpleUpdater::downloadFinished);
    connect(updater, &Updater::appcastDownloaded, this, &QSimpleUpdater::appcastDownloaded);
    connect(updater, &Updater::networkError, this, &QSimpleUpdater::networkError);
    connect(updater, &Updater::removeUpdateDialog, this, &QSimpleUpdater::removeUpdateDialog);
    return updater;
}
