#include "app/SerializableRoot.h"

#include "files/SetAside.h"
#include "files/WholeFile.h"

#include <QDebug>
#include <QFile>
#include <QJsonDocument>
#include <QStandardPaths>

namespace {

/// A float keeps seven digits of a number.
bool isKept(const QJsonValue& before, const QJsonValue& after)
{
    constexpr double digits = 1e-6;
    if (!before.isDouble() || !after.isDouble())
        return before == after;
    const double value = before.toDouble();
    return qAbs(value - after.toDouble()) <= digits * qAbs(value);
}

} // namespace

SerializableRoot::SerializableRoot(QObject* parent)
    : QObject(parent)
{
}

void SerializableRoot::term()
{
    if (mSaveOnTerm)
        save();
}

bool SerializableRoot::init(const QString& fileName)
{
    mPath = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + u'/' + fileName;
    if (QFile::exists(mPath))
        return load();
    initWithDefaults();
    return save();
}

QByteArray SerializableRoot::text() const
{
    QJsonObject json;
    write(json);
    return QJsonDocument(json).toJson(QJsonDocument::Indented);
}

bool SerializableRoot::save() const
{
    const WholeFile::Outcome outcome = WholeFile::write(mPath, text());
    if (outcome.step == WholeFile::Outcome::NotWritten)
        qCritical().noquote()
            << QStringLiteral("Couldn't write file %1: %2. The old one is kept.").arg(mPath, outcome.reason);
    else if (!outcome)
        qCritical().noquote() << QStringLiteral("Couldn't open file %1 for saving.").arg(mPath);
    return static_cast<bool>(outcome);
}

bool SerializableRoot::load()
{
    QFile file(mPath);
    if (!file.open(QIODevice::ReadOnly)) {
        SetAside::mark(mPath);
        qCritical().noquote() << QStringLiteral("Couldn't open file %1 for loading.").arg(mPath);
        return false;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (document.isNull()) {
        SetAside::mark(mPath);
        qCritical().noquote()
            << QStringLiteral("Couldn't parse file %1. JSON error: %2").arg(mPath, error.errorString());
        return false;
    }
    read(document.object());
    if (mSaveOnTerm && (!document.isObject() || !givesBack(document.object())))
        SetAside::mark(mPath);
    return true;
}

/// Whether every key that is known here would be written as it was read.
bool SerializableRoot::givesBack(const QJsonObject& json) const
{
    QJsonObject back;
    write(back);
    for (auto it = json.begin(); it != json.end(); ++it) {
        if (back.contains(it.key()) && !isKept(it.value(), back.value(it.key())))
            return false;
    }
    return true;
}
