#pragma once

#include <QObject>

/// What a MIDI input tells of its port. The inputs that the player chose are MidiInputs'.
class MidiIn : public QObject
{
    Q_OBJECT

signals:
    void selectedPortChanged(int index);
    void selectedVirtualPortChanged(int index);
};
