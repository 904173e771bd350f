#pragma once

#include <QObject>

/// The place where licensing joins the program. This build is unrestricted: a check reports so.
class Licensing : public QObject
{
    Q_OBJECT

public:
    /// First step of start-up.
    void start();
    /// Last step of start-up; answers by restrictionsReported.
    void check();

signals:
    /// Chord memory, saving and loading, glissando and MIDI are unavailable while `restricted`.
    void restrictionsReported(bool restricted);
};
