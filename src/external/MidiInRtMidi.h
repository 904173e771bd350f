#pragma once

#include <QObject>

class RtMidiIn;

/// The place of a MIDI input over RtMidi. The program has none yet.
class MidiInRtMidi : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    RtMidiIn* rtMidiIn = nullptr;
};
