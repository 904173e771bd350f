#pragma once

#include <QtGlobal>

/// What the application does for the rooms below it, which do not know its class. Graphical thread.
class ApplicationServices
{
public:
    virtual ~ApplicationServices() = default;

    /// Reads both style sheets again; nothing is applied unless both could be read.
    virtual bool loadStyleSheet() = 0;
    /// What a press was meant to do by the mode buttons; nothing reads it.
    virtual void setPressMode(qint16 mode) = 0;
};
