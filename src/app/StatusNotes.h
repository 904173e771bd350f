#pragma once

#include <QObject>
#include <QString>

/// Carries what the player should know in passing to the status line, from folders that do not know the
/// window. [gui]
class StatusNotes : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    void say(const QString& text) { emit said(text); }

signals:
    void said(QString text);
};
