#pragma once

#include "external/MidiOutput.h"
#include "sound/OrloEvent.h"

#include <QList>
#include <QObject>
#include <QString>

#include <atomic>

/// Routes what the player plays to the outside protocols: turns its instructions into calls on the MIDI
/// output. Only this direction is live.
class Interface : public QObject
{
    Q_OBJECT

public:
    /// [gui] Makes the MIDI output.
    explicit Interface(QObject* parent = nullptr);

    /// [gui] Replaces the output by a new one; the constructor has made one already.
    bool init();
    /// [stopped] Releases the port.
    void term();

    /// [any] Without effect as yet.
    bool addMidiIn() { return true; }
    /// [any] Without effect as yet.
    bool addMidiOut() { return true; }
    /// [any] Without effect as yet.
    bool addOscIn() { return true; }
    /// [any] Without effect as yet.
    bool addOscOut() { return true; }
    /// [any] Without effect as yet.
    void startListening() {}
    /// [any] Without effect as yet.
    void stopListening() {}
    /// [any] Without effect as yet.
    void assignInputToEvent(int, QString) {}

    /// [gui] Sets `restricted`. What sounds is silenced, as its note-off does not go out any more.
    void setRestricted(bool isRestricted);

    /// [gui] Set at the start; a child of this object.
    MidiOutput* midiOutput = nullptr;
    /// [any] Nothing goes out.
    std::atomic<bool> restricted{false};

public slots:
    /// [audio] One of PdPlayer::Instruction; anything else is ignored. A note is tuned before it starts.
    void receiveInstructions(int parameter, QList<int> voices, QList<float> value1, QList<float> value2);
    /// [audio] PdPlayer::notesRetuned.
    void receiveRetuning(QList<int> voices, QList<float> frequencies, QList<float> velocities);

signals:
    /// Never emitted as yet.
    void eventReceived(QString source, const OrloEvent* event);
    /// Never emitted as yet.
    void inputAssigned();

private:
    bool isOff() const;

    OrloEvent mEvent;
};
