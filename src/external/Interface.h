#pragma once

#include "external/MidiOutput.h"
#include "sound/OrloEvent.h"

#include <QList>
#include <QObject>
#include <QString>

#include <atomic>

/// Stands between the player and the outside protocols: turns the player's instructions into calls
/// on the MIDI output. Only this direction is live.
class Interface : public QObject
{
    Q_OBJECT

public:
    explicit Interface(QObject* parent = nullptr);

    /// Replaces the output by a new one; the constructor has made one already.
    bool init();
    /// [stopped] Releases the port.
    void term();

    /// Without effect as yet.
    bool addMidiIn() { return true; }
    bool addMidiOut() { return true; }
    bool addOscIn() { return true; }
    bool addOscOut() { return true; }
    void startListening() {}
    void stopListening() {}
    void assignInputToEvent(int, QString) {}

    /// [gui] Sets `restricted`. What sounds is silenced, as its note-off does not go out any more.
    void setRestricted(bool isRestricted);

    MidiOutput* midiOutput = nullptr; // a child of this object
    /// [audio] reads it: nothing goes out.
    std::atomic<bool> restricted{false};

public slots:
    /// [audio] One of PdPlayer::Instruction; anything else is ignored.
    void receiveInstructions(int parameter, QList<int> voices, QList<float> value1, QList<float> value2);

signals:
    void eventReceived(QString source, const OrloEvent* event);
    void inputAssigned();

private:
    OrloEvent mEvent;
};
