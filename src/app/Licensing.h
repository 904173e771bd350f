#pragma once

#include <QObject>

/// Where licensing connects to the program. This build has no restrictions, and a check reports that.
class Licensing : public QObject
{
    Q_OBJECT

public:
    /// First step of start-up.
    void start();
    /// Last step of start-up; the answer is the signal restrictionsReported.
    void check();

signals:
    /// Chord memory, saving and loading, glissando and MIDI are unavailable while `restricted`.
    void restrictionsReported(bool restricted);
};
