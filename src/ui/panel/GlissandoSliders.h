#pragma once

class PdPlayer;
class QPushButton;
class QSlider;
class QWidget;

/// The two sliders of the glissando and the buttons that show and hide them. The sliders send
/// fractions of their range; how many cents these are is the player's.
class GlissandoSliders
{
public:
    /// Not owned. Of the sliders the first is the coarse one, of the buttons likewise.
    struct Widgets
    {
        QSlider* coarse;
        QSlider* fine;
        QPushButton* coarseButton;
        QPushButton* fineButton;
        QWidget* centreLine; // shown while either slider is
    };
    GlissandoSliders(const Widgets& widgets, PdPlayer* player);

    /// Sends the slider's value to the player.
    void queueCoarse() const;
    void queueFine() const;

    /// After a click on either button.
    void buttonClicked();
    /// Hides both sliders, or shows those again that the last click left shown.
    void toggleGlissSliders();

    static int centreOf(const QSlider* slider);
    /// Centres both, and the player is told.
    void centreBoth();
    /// Nothing under restrictions.
    void centreFine();
    /// The player has reset them: 0 both, 1 the coarse one, 2 the fine one.
    void showReset(short which);

    void setRestricted(bool restricted);

private:
    void showSliders();

    Widgets mWidgets;
    PdPlayer* mPlayer;
    bool mCoarseWasOn = false;
    bool mFineWasOn = false;
};
