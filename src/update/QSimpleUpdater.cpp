#include "update/QSimpleUpdater.h"

#include <QCoreApplication>

#include <utility>

QSimpleUpdater* QSimpleUpdater::getInstance()
{
    // Not a static object: its windows and connections must end before the application object does.
    static QSimpleUpdater* instance = nullptr;
    if (!instance) {
        instance = new QSimpleUpdater;
        qAddPostRoutine([] { delete std::exchange(instance, nullptr); });
    }
    return instance;
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
