#pragma once

#include <QObject>

/// An empty shape for a MIDI input, which the program does not have yet. Nothing makes one.
class MidiIn : public QObject
{
    Q_OBJECT

signals:
    /// Never emitted as yet.
    void selectedPortChanged(int index);
    /// Never emitted as yet.
    void selectedVirtualPortChanged(int index);
};
