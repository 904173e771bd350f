#pragma once

#include <QObject>

class RtMidiIn;

/// An empty shape for a MIDI input over RtMidi, which the program does not have yet. Nothing makes one.
class MidiInRtMidi : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    RtMidiIn* rtMidiIn = nullptr;
};
