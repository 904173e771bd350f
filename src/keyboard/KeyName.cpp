#include "keyboard/KeyName.h"

#include <array>

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
