#pragma once

#include "app/SerializableRoot.h"
#include "sound/OrloEvent.h"

#include <QHash>
#include <QSharedPointer>

/// What each RFID tag of the physical device does, from rfid_map.json in the config directory. The
/// file is only read, but made empty when it is missing.
///
/// Its members are like "04a1b2c3d4": { "event": 1, "value": 0.5 } or { "value": "/3/5" }. Keys
/// count by their first ten characters, case aside.
class RfidMap : public SerializableRoot
{
    Q_OBJECT

public:
    /// [listener]
    explicit RfidMap(QObject* parent = nullptr);

    using SerializableRoot::init;
    /// [listener] Reads the file. False when it cannot be read.
    bool init();
    /// [listener] Adds the entries; an invalid path, or a base frequency that the options would not take, is
    /// dropped with a warning.
    void read(const QJsonObject& json) override;
    /// [listener]
    void write(QJsonObject& json) const override;
    /// [listener] The default map is empty.
    void initWithDefaults() override {}

    /// [listener] Null for a tag that is not in the map. The event stays the map's.
    const OrloEvent* lookup(const QString& rfid) const;

private:
    QHash<QString, QSharedPointer<OrloEvent>> mEvents; // by key in lower case
};
