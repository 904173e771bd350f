#pragma once

#include <QList>

class ApplicationServices;
class QPushButton;

/// The four hidden buttons of a press's mode, of which at most one is on. Nothing reads the mode.
class PressModeButtons
{
public:
    /// In the order of their modes: toggle, shift, remove, select and apply.
    PressModeButtons(const QList<QPushButton*>& buttons, ApplicationServices* application);

    void clicked(const QPushButton* button);

private:
    QList<QPushButton*> mButtons;
    ApplicationServices* mApplication;
};
