#include "app/OptionsSync.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "app/WindowPlace.h"
#include "external/MidiOutput.h"
#include "external/MpeBend.h"
#include "sound/AudioOutput.h"
#include "sound/EngineRelay.h"
#include "sound/PdPlayer.h"
#include "ui/lattice/OrloLeavesWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/window/MainWindow.h"

namespace OptionsSync {

void toMidi()
{
    const Settings* settings = app::settings();
    MidiOutput* output = app::midiOutput();
    output->selectPort(settings->midiOutDevice);
    if (settings->midiOutMpeZone)
        output->setMpeZone();
    else
        output->setChannel(settings->midiOutChannel);
    output->mpeSetPitchBendRange(mpe::bendRange(settings->glissRangeMPECents));
}

void toProgram(MainWindow& window)
{
    Settings* settings = app::settings();
    WindowPlace::restore(window, *settings);
    window.updateZoomMode();

    PdPlayer* player = app::player();
    player->queueGui(OrloEvent::BaseFrequencySet, static_cast<float>(settings->baseFrequency));
    player->queueGui(OrloEvent::MasterVolumeSet, settings->masterVolume);
    player->queueGui(OrloEvent::MonophonicSet, settings->monophonic ? 1.0F : 0.0F);

    // The engine answers these events too, with what was just read.
    const EngineRelay* relay = &player->relay();
    QObject::connect(relay, &EngineRelay::baseFrequencyChanged, settings, [settings](float frequency) {
        // In single precision: an answer to the option must not cut the option's digits.
        if (frequency != static_cast<float>(settings->baseFrequency))
            settings->onBaseFrequencyChanged(frequency);
    });
    QObject::connect(relay, &EngineRelay::volumeChanged, settings, &Settings::onMasterVolumeChanged);
    QObject::connect(relay, &EngineRelay::monophonicChanged, settings, &Settings::onMonophonicChanged);
}

void fromProgram(const MainWindow& window)
{
    Settings* settings = app::settings();
    settings->circlesView = window.orloView()->view() == OrloLeavesWidget::Circles;
    WindowPlace::remember(window, *settings);
    keepDevice(app::audioOutput()->selectedDevice());
    const MidiOutput* midi = app::midiOutput();
    settings->midiOutDevice = midi->wantedPort.isEmpty() ? midi->portName : midi->wantedPort;
    settings->midiOutChannel = midi->channel;
    settings->midiOutMpeZone = midi->isMpeZone();
}

void keepDevice(int index)
{
    if (index != -1)
        app::settings()->audioDevice = index;
}

} // namespace OptionsSync
