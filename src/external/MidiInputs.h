#pragma once

#include "app/RationedLog.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>
#include <string>
#include <thread>

class MidiInRing;

/// The MIDI inputs that the player chose, by name. One that is missing, or that goes, is opened as soon as a
/// port of its name is there. A thread of its own [receiver] calls RtMidi, looks for ports twice a second,
/// and ends when nothing is wanted any more; [gui] never waits for it, since a frozen server may keep it.
///
/// What an input delivers lies in the ring of its slot, which it keeps as long as it is wanted.
class MidiInputs : public QObject
{
    Q_OBJECT

public:
    static constexpr int SLOTS = 32;

    /// [gui] Makes no thread yet.
    explicit MidiInputs(QObject* parent = nullptr);
    /// [gui] Nothing is written into a ring afterwards, unless the MIDI system hangs: then its thread keeps
    /// the rings and is left alone. Nobody may read them any more.
    ~MidiInputs() override;

    /// [gui] The names of all ports but this program's own, as of the last look. Has a look taken, and
    /// further ones as long as it is called every few seconds.
    QStringList available();
    /// [gui] Opens these and closes all others. Those beyond SLOTS are left out with a warning.
    void setWanted(const QStringList& names);
    QStringList wanted() const;
    /// [gui] Those of the wanted ones that are open.
    QStringList open() const;
    /// [gui] Of a wanted input, else -1.
    int slotOf(const QString& name) const;
    /// [gui] Lives as long as this.
    MidiInRing& ring(int slot);

signals:
    /// [gui] available() or open() says something else now.
    void changed();
    /// [gui]
    void lost(QString name);
    /// [gui] An input that was missing is open.
    void back(QString name);
    /// [gui] An input delivers what is no message, or more than can be played. Once for each time
    /// it is chosen.
    void troubled(QString text);

private:
    struct Core;

    void ensureThread();
    bool assignSlot(const std::string& name);
    void look();
    void lookAtSlot(int slot);

    std::shared_ptr<Core> mCore; // shared with the thread
    std::thread mThread;
    QTimer mWatch;
    RationedLog mFailures;
    QStringList mAvailable;
    QStringList mOpen;
};
