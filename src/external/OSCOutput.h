#pragma once

#include <QObject>

/// The place of an output by Open Sound Control. The program has none yet.
class OSCOutput : public QObject
{
    Q_OBJECT
};
