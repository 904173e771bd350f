// The sound device, the MIDI output and the number of voices.
#include "ui/dialogs/OptionsDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "external/MidiOutput.h"
#include "sound/AudioOutput.h"
#include "ui/dialogs/NonModalBox.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/hints/ControlHints.h"

#include <QComboBox>
#include <QDebug>
#include <QGridLayout>

using namespace optionspage;

namespace {

constexpr int ZONE_INDEX = MidiOutput::CHANNELS + 1; // behind MPE and the channels

} // namespace

void OptionsDialog::addVoicesRow(QVBoxLayout* layout)
{
    const Settings* settings = app::settings();
    auto* menu = new QComboBox;
    menu->setObjectName(QStringLiteral("numberOfVoicesMenu"));
    for (const int voices : settings->mainPatchVoiceChoices)
        menu->addItem(QString::number(voices));
    menu->setCurrentIndex(
        static_cast<int>(settings->mainPatchVoiceChoices.indexOf(settings->mainPatchNumberOfVoices)));
    connect(menu, &QComboBox::activated, this, &OptionsDialog::onMainPatchNumberOfVoicesMenuActivated);
    addLongRow(layout, QStringLiteral("Maximum number of voices (restart required)"), menu);
}

void OptionsDialog::onMainPatchNumberOfVoicesMenuActivated(int index)
{
    Settings* settings = app::settings();
    const int voices = settings->mainPatchVoiceChoices.value(index);
    if (voices == settings->mainPatchNumberOfVoices)
        return;
    settings->mainPatchNumberOfVoices = voices;
    showNonModalBox(
        this, QMessageBox::Information,
        QStringLiteral("Changing the maximum number of voices will only be effective after restart. "
                       "Please close and restart the application!"));
}

void OptionsDialog::addDeviceRows(QGridLayout* grid)
{
    mAudioDeviceMenu = new QComboBox;
    mAudioDeviceMenu->setPlaceholderText(QStringLiteral("- none open -"));
    mMidiDeviceMenu = new QComboBox;
    mMidiDeviceMenu->setObjectName(QStringLiteral("midiOutputDeviceMenu"));
    mMidiChannelMenu = new QComboBox;
    mMidiChannelMenu->setObjectName(QStringLiteral("midiOutputChannelMenu"));
    for (QComboBox* menu : {mAudioDeviceMenu, mMidiDeviceMenu, mMidiChannelMenu})
        setUpMenu(menu);
    for (const auto& [menu, row] :
         {std::pair{mAudioDeviceMenu, "audioDevice"}, {mMidiDeviceMenu, "midiDevice"}}) {
        hints::give(menu, row);
        connect(menu, &QComboBox::currentTextChanged, menu, [menu = menu, row = row](const QString& name) {
            menu->setToolTip(hints::inLines(hints::text(row)) + u'\n'
                             + name); // which may be longer than the menu
        });
    }
    listAudioDevices();
    mMidiDeviceMenu->addItem(MidiOutput::deactivatedName());
    mMidiDeviceMenu->addItems(app::midiOutput()->availablePorts());
    mMidiChannelMenu->addItem(QStringLiteral("MPE"));
    for (int channel = 1; channel <= MidiOutput::CHANNELS; ++channel)
        mMidiChannelMenu->addItem(QStringLiteral("MTS Ch ") + QString::number(channel));
    mMidiChannelMenu->addItem(QStringLiteral("MPE zone"));
    showMidi();
    connect(mAudioDeviceMenu, &QComboBox::activated, this, &OptionsDialog::onAudioDeviceMenuActivated);
    connect(mMidiDeviceMenu, &QComboBox::activated, this, &OptionsDialog::onMidiOutputDeviceMenuActivated);
    connect(mMidiChannelMenu, &QComboBox::activated, this, &OptionsDialog::onMidiOutputChannelMenuActivated);
    connect(app::audioOutput(), &AudioOutput::selectedDeviceChanged, this, &OptionsDialog::showAudioDevice);
    connect(app::audioOutput(), &AudioOutput::devicesChanged, this, &OptionsDialog::listAudioDevices);
    connect(app::midiOutput(), &MidiOutput::portLost, this, &OptionsDialog::onMidiPortLost);
    connect(app::midiOutput(), &MidiOutput::portBack, this, &OptionsDialog::onMidiPortBack);

    addGridRow(grid, label(QStringLiteral("Audio Device"), mAudioDeviceMenu), row({mAudioDeviceMenu}));
    QHBoxLayout* midi = row({mMidiDeviceMenu, mMidiChannelMenu});
    midi->setStretch(0, 5);
    midi->setStretch(1, 3);
    addGridRow(grid, label(QStringLiteral("MIDI Output"), mMidiDeviceMenu), midi);
}

void OptionsDialog::listAudioDevices()
{
    mAudioDeviceMenu->clear();
    mAudioDeviceMenu->addItems(app::audioOutput()->devices());
    showAudioDevice();
}

void OptionsDialog::showAudioDevice()
{
    mAudioDeviceMenu->setCurrentIndex(app::audioOutput()->selectedDevice());
}

void OptionsDialog::showMidi()
{
    const MidiOutput* output = app::midiOutput();
    mMidiDeviceMenu->setCurrentIndex(qMax(0, mMidiDeviceMenu->findText(output->portName)));
    mMidiChannelMenu->setCurrentIndex(output->isMpeZone() ? ZONE_INDEX : output->channel + 1);
}

void OptionsDialog::onAudioDeviceMenuActivated(int index)
{
    AudioOutput* output = app::audioOutput();
    int former = output->selectedDevice();
    const QString formerName = mAudioDeviceMenu->itemText(former);
    const QString name = mAudioDeviceMenu->itemText(index); // the list may change
    if (!output->selectDevice(index)) {
        showNonModalBox(this, QMessageBox::Critical,
                        QStringLiteral("Failed to open audio device %1.").arg(name));
        if (mAudioDeviceMenu->itemText(former) != formerName)
            former = mAudioDeviceMenu->findText(formerName);
        output->selectDevice(former);
    }
    showAudioDevice();
}

void OptionsDialog::onMidiOutputDeviceMenuActivated(int index)
{
    MidiOutput* output = app::midiOutput();
    const QString former = output->portName;
    const QString chosen = mMidiDeviceMenu->itemText(index);
    const bool endsWaiting = index == 0 && !output->missingPort().isEmpty();
    if (chosen == former && !endsWaiting)
        return;
    if (index == 0) {
        if (output->selectPort(-1)) {
            showNonModalBox(this, QMessageBox::Critical,
                            QStringLiteral("Failed to close Midi output port / device %1.").arg(former));
            mMidiDeviceMenu->setCurrentText(former);
        }
    } else if (!output->selectPort(chosen)) {
        showNonModalBox(this, QMessageBox::Critical,
                        QStringLiteral("Failed to open Midi output port / device %1.").arg(chosen));
        mMidiDeviceMenu->setCurrentIndex(0);
    }
}

void OptionsDialog::onMidiOutputChannelMenuActivated(int index)
{
    if (index == ZONE_INDEX) {
        app::midiOutput()->setMpeZone();
        qDebug() << "Midi channel set to: MPE zone";
        return;
    }
    app::midiOutput()->setChannel(index - 1);
    qDebug() << "Midi channel set to: " << index - 1;
}

void OptionsDialog::onMidiPortBack(const QString& name)
{
    if (mMidiDeviceMenu->findText(name) < 0)
        mMidiDeviceMenu->addItem(name);
    if (mMidiDeviceMenu->isEnabled())
        showMidi();
}

void OptionsDialog::onMidiPortLost(const QString& name)
{
    mMidiDeviceMenu->setCurrentIndex(0);
    showNonModalBox( // over the window, since the dialog may be closed
        parentWidget(), QMessageBox::Warning,
        QStringLiteral("The Midi output port / device %1 no longer answers and was closed.").arg(name));
}
