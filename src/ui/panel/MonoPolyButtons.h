#pragma once

class PdPlayer;
class QPushButton;

/// The two buttons of the monophonic mode, of which one is always on.
class MonoPolyButtons
{
public:
    MonoPolyButtons(QPushButton* mono, QPushButton* poly, PdPlayer* player);

    // After a click, which has toggled the button. The other button changes once the engine answers.
    void monoClicked();
    void polyClicked();

    // Both buttons change at once.
    void chooseMono();
    void choosePoly();

    /// Shows the engine's mode.
    void showMonophonic(bool on);

private:
    void clicked(bool mono);

    QPushButton* mMono;
    QPushButton* mPoly;
    PdPlayer* mPlayer;
};
