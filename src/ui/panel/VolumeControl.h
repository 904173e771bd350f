#pragma once

class PdPlayer;
class QSlider;
class QString;

/// The slider of the master volume.
class VolumeControl
{
public:
    VolumeControl(QSlider* slider, PdPlayer* player);

    /// Sends the slider's volume to the engine.
    void queueVolume() const;
    /// Shows the engine's volume, 0 to 1.
    void showVolume(float volume);

    // What the keys do.
    void setToMinimum();
    void setToDefault();
    /// By two positions, unless that would pass the end.
    void lower();
    void raise();

    int defaultPosition() const;
    /// As "75%".
    QString valueText() const;

private:
    QSlider* mSlider;
    PdPlayer* mPlayer;
};
