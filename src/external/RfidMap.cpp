#include "external/RfidMap.h"

#include "app/LogText.h"
#include "model/PitchRange.h"
#include "sound/OrloNoteEvent.h"
#include "sound/ThreadCheck.h"

#include <QDebug>

#include <cmath>
#include <limits>

namespace {

constexpr qsizetype KEY_LENGTH = 10;
const QString EVENT = QStringLiteral("event");
const QString VALUE = QStringLiteral("value");

/// Cut to an integer. A number that does not fit in one names no event.
OrloEvent::Type typeFrom(double number)
{
    constexpr double max = std::numeric_limits<std::int32_t>::max();
    if (!(std::abs(number) <= max))
        return OrloEvent::None;
    return static_cast<OrloEvent::Type>(static_cast<std::int32_t>(number));
}

/// A number too large for a float becomes an infinite one, which the player drops.
float valueFrom(double number)
{
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max()))
        return number > 0.0 ? std::numeric_limits<float>::infinity()
                            : -std::numeric_limits<float>::infinity();
    return static_cast<float>(number);
}

QString numberText(float value)
{
    return QString::number(static_cast<double>(value));
}

/// False for a frequency of 1/1 that would silence every note, and be kept as an option.
bool isUsable(const OrloEvent& event)
{
    return event.type() != OrloEvent::BaseFrequencySet
           || (event.value() >= pitchrange::LOWEST && event.value() <= pitchrange::HIGHEST);
}

/// Null, with a warning, for a path that is not valid and for a base frequency out of range.
QSharedPointer<OrloEvent> eventFrom(const QString& key, const QJsonObject& entry)
{
    const QString path = entry.value(VALUE).toString();
    if (path.startsWith(u'/')) {
        const OrloPath parsed(path);
        if (parsed.isValid())
            return QSharedPointer<OrloNoteEvent>::create(parsed);
        qWarning().noquote() << QStringLiteral("RFID %1 was assigned invalid path %2. Ignoring.")
                                    .arg(logText(key), logText(path));
        return nullptr;
    }
    auto event = QSharedPointer<OrloEvent>::create(typeFrom(entry.value(EVENT).toDouble()),
                                                   valueFrom(entry.value(VALUE).toDouble()));
    if (isUsable(*event))
        return event;
    qWarning().noquote()
        << QStringLiteral("RFID %1 was assigned base frequency %2, which is not from %3 to %4 Hz. Ignoring.")
               .arg(logText(key), numberText(event->value()), numberText(pitchrange::LOWEST),
                    numberText(pitchrange::HIGHEST));
    return nullptr;
}

} // namespace

RfidMap::RfidMap(QObject* parent)
    : SerializableRoot(parent)
{
}

bool RfidMap::init()
{
    setSaveOnTerm(false);
    return init(QStringLiteral("rfid_map.json"));
}

void RfidMap::read(const QJsonObject& json)
{
    for (auto it = json.begin(); it != json.end(); ++it) {
        const QString key = it.key().left(KEY_LENGTH).toLower();
        const QSharedPointer<OrloEvent> event = eventFrom(key, it.value().toObject());
        if (!event)
            continue;
        mEvents.insert(key, event);
        const auto* note = dynamic_cast<const OrloNoteEvent*>(event.get());
        qWarning().noquote() << QStringLiteral("RFID %1 mapped to: event %2, value %3")
                                    .arg(logText(key), QString::number(event->type()),
                                         note ? note->path().toString() : numberText(event->value()));
    }
}

void RfidMap::write(QJsonObject& json) const
{
    for (auto it = mEvents.begin(); it != mEvents.end(); ++it) {
        const auto* note = dynamic_cast<const OrloNoteEvent*>(it->get());
        QJsonObject entry;
        entry.insert(EVENT, static_cast<int>((*it)->type()));
        entry.insert(VALUE, note ? QJsonValue(note->path().toString())
                                 : QJsonValue(static_cast<double>((*it)->value())));
        json.insert(it.key(), entry);
    }
}

const OrloEvent* RfidMap::lookup(const QString& rfid) const
{
    ThreadCheck::listener();
    return mEvents.value(rfid.toLower()).get();
}
