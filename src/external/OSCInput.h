#pragma once

#include <QObject>

/// An empty shape for an input by Open Sound Control, which the program does not have yet. Nothing makes one.
class OSCInput : public QObject
{
    Q_OBJECT
};
