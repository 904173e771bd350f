#pragma once

#include <QWidget>

class MidiPlaying;
class QCheckBox;
class QComboBox;
class QSpinBox;

/// How keys play: bend, zones, pressure; and whether the lattice shows them. [gui]
class PlayingPage : public QWidget
{
    Q_OBJECT

public:
    explicit PlayingPage(MidiPlaying& playing);

private:
    QComboBox* macroMenu(const char* name, int macro);
    void applySettings();

    MidiPlaying& mPlaying;
    QSpinBox* mBend;
    QCheckBox* mMpe;
    QComboBox* mPressure;
    QComboBox* mTimbre;
};
