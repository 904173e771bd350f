#include "keyboard/KeysOfPitch.h"

#include "keyboard/KeyTable.h"

#include <QMap>

#include <array>
#include <cstdint>

namespace {

constexpr int SHOWN = 2; // keys of a pitch

using Channels = std::uint16_t;        // one bit each
using KeysOfOne = QMap<int, Channels>; // by key
constexpr Channels ALL_CHANNELS = Channels(-1);

QString nameOf(int key, Channels channels)
{
    if (channels == ALL_CHANNELS)
        return keyName(key);
    int first = 0;
    while (!(channels & (1U << first)))
        ++first;
    return QStringLiteral("%1 ch %2").arg(keyName(key)).arg(first + 1);
}

QString nameOf(const KeysOfOne& keys)
{
    QStringList names;
    for (auto key = keys.cbegin(); key != keys.cend() && names.size() < SHOWN; ++key)
        names.append(nameOf(key.key(), key.value()));
    return names.join(QStringLiteral(", ")) + (keys.size() > SHOWN ? QStringLiteral(" ...") : QString());
}

} // namespace

QString keyName(int key)
{
    constexpr int STEPS = 12;
    static constexpr std::array<const char*, STEPS> NAMES{"C",  "C#", "D",  "D#", "E",  "F",
                                                          "F#", "G",  "G#", "A",  "A#", "B"};
    return QStringLiteral("%1%2 %3")
        .arg(QLatin1StringView(NAMES.at(static_cast<std::size_t>(key % STEPS))))
        .arg(key / STEPS - 1)
        .arg(key);
}

QHash<OrloRatio, QString> keysOfPitches(const QList<std::shared_ptr<const KeyTable>>& tables)
{
    QHash<OrloRatio, KeysOfOne> keys;
    for (const auto& table : tables) {
        for (int channel = 0; channel < KeyTable::CHANNELS; ++channel) {
            for (int key = 0; key < KeyTable::KEYS; ++key) {
                if (const OrloRatio& ratio = table->at(channel, key).ratio; ratio.numerator() != 0)
                    keys[ratio][key] |= static_cast<Channels>(1U << channel);
            }
        }
    }
    QHash<OrloRatio, QString> names;
    for (auto pitch = keys.cbegin(); pitch != keys.cend(); ++pitch)
        names.insert(pitch.key(), nameOf(pitch.value()));
    return names;
}
