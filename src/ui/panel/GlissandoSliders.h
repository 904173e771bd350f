#pragma once

class PdPlayer;
class QPushButton;
class QSlider;
class QWidget;

/// The two sliders of the glissando and the buttons that show and hide them. The sliders send
/// fractions of their range; the engine knows how many cents these are.
class GlissandoSliders
{
public:
    /// Not owned. Each button shows and hides the slider of its name.
    struct Widgets
    {
        QSlider* coarse;
        QSlider* fine;
        QPushButton* coarseButton;
        QPushButton* fineButton;
        QWidget* centreLine; // shown while either slider is
    };
    GlissandoSliders(const Widgets& widgets, PdPlayer* player);

    /// Sends the slider's value to the engine.
    void queueCoarse() const;
    void queueFine() const;

    /// After a click on either button.
    void buttonClicked();
    /// Hides both sliders, or shows those again that the last click left shown.
    void toggleGlissSliders();

    static int centreOf(const QSlider* slider);
    /// Centres both, and tells the engine.
    void centreBoth();
    /// Nothing under restrictions.
    void centreFine();
    /// The engine has reset them: 0 both, 1 the coarse one, 2 the fine one.
    void showReset(short which);

    void setRestricted(bool restricted);

private:
    void showSliders();

    Widgets mWidgets;
    PdPlayer* mPlayer;
    bool mCoarseWasOn = false;
    bool mFineWasOn = false;
};
