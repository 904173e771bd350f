#include "keyboard/ControllerMap.h"

#include <QHashFunctions>
#include <QJsonArray>

#include <algorithm>

namespace {

constexpr int CONTROL_CHANGE = 0xB0;

/// What keys obey: data entry, the sustain pedal, registered parameters, channel modes.
bool isOfTheKeys(int controller)
{
    return controller == 6 || controller == 38 || controller == 64 || (controller >= 96 && controller <= 101)
           || controller >= 120;
}

} // namespace

// ---------------------------------------------------------------- source

std::optional<ControllerSource> ControllerSource::of(const QString& input, std::uint8_t status,
                                                     std::uint8_t data1)
{
    if ((status & 0xF0) != CONTROL_CHANGE || isOfTheKeys(data1))
        return std::nullopt;
    return ControllerSource{input, status & 0x0F, data1};
}

size_t qHash(const ControllerSource& source, size_t seed)
{
    return qHashMulti(seed, source.input, source.channel, source.controller);
}

// ---------------------------------------------------------------- map

ControllerTarget ControllerMap::targetOf(const ControllerSource& source) const
{
    const auto found = std::find_if(mEntries.begin(), mEntries.end(),
                                    [&](const Entry& entry) { return entry.source == source; });
    return found == mEntries.end() ? ControllerTarget() : found->target;
}

void ControllerMap::learn(const ControllerSource& source, const ControllerTarget& target)
{
    remove(source);
    if (!target.isNone())
        mEntries.append({source, target});
}

void ControllerMap::remove(const ControllerSource& source)
{
    mEntries.removeIf([&](const Entry& entry) { return entry.source == source; });
}

// ---------------------------------------------------------------- file

QJsonObject ControllerMap::toJson() const
{
    QJsonArray list;
    for (const auto& [source, target] : mEntries) {
        list.append(QJsonObject{{QStringLiteral("input"), source.input},
                                {QStringLiteral("channel"), source.channel + 1},
                                {QStringLiteral("controller"), source.controller},
                                {QStringLiteral("does"), target.id()}});
    }
    return {{QStringLiteral("controllers"), list}};
}

ControllerMap ControllerMap::fromJson(const QJsonObject& json, int* dropped)
{
    ControllerMap map;
    int bad = 0;
    const QJsonValue list = json[u"controllers"];
    if (!list.isArray() && !list.isUndefined())
        ++bad;
    for (const QJsonValue& each : list.toArray()) {
        // What is missing or no whole number becomes one that no controller has.
        const ControllerSource source{each[u"input"].toString(), each[u"channel"].toInt(0) - 1,
                                      each[u"controller"].toInt(-1)};
        const ControllerTarget target = ControllerTarget::fromId(each[u"does"].toString());
        const bool isGood = !target.isNone() && !source.input.isEmpty() && source.channel >= 0
                            && source.channel < ControllerSource::CHANNELS && source.controller >= 0
                            && source.controller < ControllerSource::CONTROLLERS
                            && map.targetOf(source).isNone();
        if (isGood)
            map.mEntries.append({source, target});
        else
            ++bad;
    }
    if (dropped)
        *dropped = bad;
    return map;
}
