#pragma once

#include <QObject>

/// An empty shape for an output by Open Sound Control, which the program does not have yet. Nothing makes
/// one.
class OSCOutput : public QObject
{
    Q_OBJECT
};
