#pragma once

#include <QObject>

/// The shape of a MIDI input. The program has none yet.
class MidiIn : public QObject
{
    Q_OBJECT

signals:
    void selectedPortChanged(int index);
    void selectedVirtualPortChanged(int index);
};
