#include "app/Autosave.h"

#include "app/Accessors.h"
#include "app/ApplicationServices.h"
#include "app/OptionsSync.h"
#include "app/Settings.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QTimer>

namespace Autosave {

void start(QObject* owner, std::function<void()> save)
{
    auto* timer = new QTimer(owner);
    QObject::connect(timer, &QTimer::timeout, owner, std::move(save));
    timer->setInterval(INTERVAL);
    timer->setTimerType(Qt::VeryCoarseTimer);
    timer->start();
}

void save(const MainWindow& window, const QString& configDirectory)
{
    OptionsSync::fromProgram(window);
    app::settings()->save();
    QDir chords(chordFile(configDirectory));
    app::application()->saveStoredChordsToDisk(&chords);
    qDebug() << "Autosafe called ... " << QDateTime::currentDateTime().toString(Qt::TextDate);
}

QString chordFile(const QString& configDirectory)
{
    return configDirectory + QStringLiteral("/.temp.btoc");
}

} // namespace Autosave
