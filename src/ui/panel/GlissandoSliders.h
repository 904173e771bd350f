#pragma once

class PdPlayer;
class QPushButton;
class QSlider;
class QString;
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
    /// How far a slider stands from its centre, as "+12.5 cents". `range`: cents from there to either end.
    static QString valueText(const QSlider* slider, float range);
    /// While a slider is dragged: says that it moves nothing when nothing is selected.
    static void tellWhenIdle();
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
