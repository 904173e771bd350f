#pragma once

#include <QObject>

/// The place of an input by Open Sound Control. The program has none yet.
class OSCInput : public QObject
{
    Q_OBJECT
};
