#include "app/Autosave.h"

#include "app/Accessors.h"
#include "app/ApplicationServices.h"
#include "app/FileTrouble.h"
#include "app/OptionsSync.h"
#include "app/Settings.h"
#include "files/SoonSaver.h"
#include "keyboard/MidiPlaying.h"
#include "memory/SaveAndLoad.h"
#include "memory/StoreAndRecall.h"
#include "ui/window/MainWindow.h"

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

std::unique_ptr<SoonSaver> afterChanges(MainWindow& window, const QString& configDirectory)
{
    const QString options = app::settings()->path();
    const QString chords = chordFile(configDirectory);
    auto* trouble = new FileTrouble(&window, configDirectory);
    trouble->keepMarked(options);
    trouble->keepMarked(chords);
    const MidiPlaying* playing = app::midiPlaying();
    trouble->keepMarked(playing->path());
    trouble->keepMarked(playing->layoutsPath());
    const auto optionsNow = [&window] {
        OptionsSync::fromProgram(window);
        return app::settings()->text();
    };
    const auto chordsNow = [] {
        return SaveAndLoad::text(*app::storeAndRecall()->storedChords(), StoreAndRecall::SETS);
    };
    return std::make_unique<SoonSaver>(QList<SoonSaver::Source>{
        {options, optionsNow},
        {chords, chordsNow},
        {playing->path(), [playing] { return playing->text(); }},
        {playing->layoutsPath(), [playing] { return playing->layoutsText(); }},
    });
}

QString chordFile(const QString& configDirectory)
{
    return configDirectory + QStringLiteral("/.temp.btoc");
}

} // namespace Autosave
