#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

/// Base of every class that is stored in a JSON file of its own in the config directory. Graphical
/// thread only. Operations report failure by their result and a critical log line.
class SerializableRoot : public QObject
{
    Q_OBJECT

public:
    explicit SerializableRoot(QObject* parent = nullptr);

    virtual void read(const QJsonObject& json) = 0;
    virtual void write(QJsonObject& json) const = 0;

    /// Saves, unless the derived class has switched that off.
    virtual void term();

    /// Uses this file of the config directory from now on: loads it, or makes it from the defaults
    /// when it is missing.
    virtual bool init(const QString& fileName);

    /// Called once, when the file does not exist yet.
    virtual void initWithDefaults() = 0;

    /// Replaces the file only when the new one is complete on disk.
    bool save() const;
    /// What cannot be read whole, or holds a number that would be cut, is marked to be set aside.
    bool load();

    QString path() const { return mPath; }
    /// What save() writes.
    QByteArray text() const;

protected:
    void setSaveOnTerm(bool on) { mSaveOnTerm = on; }

private:
    bool givesBack(const QJsonObject& json) const;

    QString mPath;
    bool mSaveOnTerm = true;
};
