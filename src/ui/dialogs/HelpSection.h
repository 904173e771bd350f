#pragma once

#include <QKeyCombination>
#include <QList>
#include <QString>

/// One subject of the help: what is pressed, and what that does.
struct HelpSection
{
    struct Row
    {
        QStringList presses;
        QString effect;
    };

    /// Presses with the same effect share a row.
    void add(const QString& press, const QString& effect);
    void add(QKeyCombination key, const QString& effect);

    QString title;
    QList<Row> rows;
};
