#pragma once

#include <QObject>

/// An empty shape for a MIDI input, which the program does not have yet. Nothing makes one.
class MidiIn : public QObject
{
    Q_OBJECT

signals:
    void selectedPortChanged(int index);
    void selectedVirtualPortChanged(int index);
};
