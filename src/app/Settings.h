#pragma once

#include "app/SerializableRoot.h"
#include "app/SettingsHidden.h"
#include "app/SharedOption.h"

#include <QList>
#include <QPoint>
#include <QSize>

/// All options as plain fields, stored in "options.json" soon after a change, at each autosave and at exit.
///
/// Written on the graphical thread only. What the sound engine reads directly, on the audio thread,
/// is a `SharedOption`. Values are not checked for range here: each class that reads one guards itself.
class Settings : public SerializableRoot
{
    Q_OBJECT

public:
    static constexpr float DEFAULT_VOLUME = 0.75F;
    static constexpr int DEFAULT_VOICES = 128;

    /// Sets every default and creates the hidden data. The application's name must have been set,
    /// since one of the defaults is a folder in the config directory.
    Settings();

    /// Initialises the hidden data, then reads or makes "options.json". Both are always run.
    bool init();
    using SerializableRoot::init;

    void read(const QJsonObject& json) override;
    void write(QJsonObject& json) const override;
    void initWithDefaults() override {} // the constructor has set them

    int audioDevice = -1;      // index in the device list, -1: none chosen yet
    int framesPerBuffer = 256; // audio block, frames
    QString midiOutDevice = QStringLiteral("deactivated");
    int midiOutChannel = 0;
    bool midiOutMpeZone = false;              // then the channel does not matter
    double baseFrequency = 440.0;             // Hz of ratio 1/1
    double calibrationFrequency = 440.0;      // Hz of A4
    QString baseNote = QStringLiteral("A 4"); // letter, "b", "#" or blank, octave
    float baseNoteFreqRatio = 1.0F;           // 1/1 frequency over the calibration frequency
    bool oneOneFreqTempered = true;           // not stored
    float masterVolume = DEFAULT_VOLUME;      // 0 to 1
    bool monophonic = false;
    QString defaultPatch = QStringLiteral("Sine.pd");
    SharedOption<bool> softNodeReset = false;
    bool circlesView = false; // false: the grapes view
    int absRelView = 1;       // 0 relative, 1 absolute, 2 second absolute mode
    int udpPort = 8888;
    QSize windowSize{-1, -1}; // -1: not known
    QPoint windowPos{-1, -1};
    bool windowMaximized = false;
    int orloZoomMode = 6;
    int updateCheckInterval = 1;
    QString tSysLastUpdateCheck;
    bool ratiosWithinOctave = true;
    bool centralNodeColourRelativeMode = true;
    int soundGrapeNotation = 0;      // 0 none, 1 coloured, 2 black and white
    bool helmholtzEllis = false;     // on the cards' staffs
    bool harmonyPanel = false;       // whether it is shown
    bool harmonyPanelFloats = false; // in a window of its own
    bool oneOneMenuSplitOctaves = false;
    QString lastBrowsedPatchPath;
    QString lastDirPath;
    SharedOption<float> glissOneRangeCents = 1200.0F;
    SharedOption<float> glissTwoRangeCents = 100.0F;
    int glissRangeMPECents = 0;
    SharedOption<bool> maintainMacroParameters = false;
    int centsShowDecimals = 0;
    int mainPatchNumberOfVoices = DEFAULT_VOICES;
    const QList<int> mainPatchVoiceChoices{4, 8, 12, 16, 24, 32, 48, 64, 96, 128}; // not stored

public slots:
    void onAudioDeviceChanged(int device);
    void onFramesPerBufferChanged(int frames);
    void onBaseFrequencyChanged(float frequency);
    /// Takes whole Hz only, although the field holds fractions.
    void onCalibrationFrequencyChanged(int frequency);
    void onBaseNoteChanged(QString note);
    void onMasterVolumeChanged(float volume);
    void onMonophonicChanged(bool on);

private:
    /// Calls visitor(key, field) for every stored field, in the order of writing.
    template <class Self, class Visitor>
    static void forEachField(Self& self, Visitor&& visitor);

    SettingsHidden mHidden;
};
