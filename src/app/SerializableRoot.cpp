#include "app/SerializableRoot.h"

#include <QDebug>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStandardPaths>

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

bool SerializableRoot::save() const
{
    QSaveFile file(mPath);
    file.setDirectWriteFallback(true); // when no new file can be made in the folder
    if (!file.open(QIODevice::WriteOnly)) {
        qCritical().noquote() << QStringLiteral("Couldn't open file %1 for saving.").arg(mPath);
        return false;
    }
    QJsonObject json;
    write(json);
    file.write(QJsonDocument(json).toJson(QJsonDocument::Indented));
    if (!file.commit()) {
        qCritical().noquote() << QStringLiteral("Couldn't write file %1: %2. The old one is kept.")
                                     .arg(mPath, file.errorString());
        return false;
    }
    return true;
}

bool SerializableRoot::load()
{
    QFile file(mPath);
    if (!file.open(QIODevice::ReadOnly)) {
        qCritical().noquote() << QStringLiteral("Couldn't open file %1 for loading.").arg(mPath);
        return false;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (document.isNull()) {
        qCritical().noquote()
            << QStringLiteral("Couldn't parse file %1. JSON error: %2").arg(mPath, error.errorString());
        return false;
    }
    read(document.object());
    return true;
}
