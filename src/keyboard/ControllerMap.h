#pragma once

#include "keyboard/ControllerTarget.h"

#include <QJsonObject>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>

/// A controller of one MIDI input.
struct ControllerSource
{
    static constexpr int CHANNELS = 16;
    static constexpr int CONTROLLERS = 128;

    QString input;      // the port's name
    int channel = 0;    // from 0
    int controller = 0; // 0 to 127

    bool operator==(const ControllerSource&) const = default;

    /// Of a message from this input; empty where it is no control change, or one that MIDI gives a meaning
    /// of its own: the sustain pedal, registered parameters and channel modes, which keys obey.
    static std::optional<ControllerSource> of(const QString& input, std::uint8_t status, std::uint8_t data1);
};

size_t qHash(const ControllerSource& source, size_t seed = 0);

/// Which controller does what. A controller does one thing; several may do the same. A plain value, of the
/// graphical thread as all of the controllers' classes.
class ControllerMap
{
public:
    struct Entry
    {
        ControllerSource source;
        ControllerTarget target;

        bool operator==(const Entry&) const = default;
    };

    bool operator==(const ControllerMap&) const = default;

    /// In the order in which they were learned.
    const QList<Entry>& entries() const { return mEntries; }
    /// None for a controller that was not learned.
    ControllerTarget targetOf(const ControllerSource& source) const;
    /// Takes the place of what the controller did before.
    void learn(const ControllerSource& source, const ControllerTarget& target);
    void remove(const ControllerSource& source);

    /// {"controllers": [{"input": "port", "channel": 1 to 16, "controller": 0 to 127, "does": "volume"}]}
    QJsonObject toJson() const;
    /// Leaves out what cannot be read; `dropped` counts it.
    static ControllerMap fromJson(const QJsonObject& json, int* dropped = nullptr);

private:
    QList<Entry> mEntries;
};
