#include "ui/panel/PressModeButtons.h"

#include "app/ApplicationServices.h"

#include <QPushButton>

PressModeButtons::PressModeButtons(const QList<QPushButton*>& buttons, ApplicationServices* application)
    : mButtons(buttons)
    , mApplication(application)
{
}

void PressModeButtons::clicked(const QPushButton* button)
{
    qint16 mode = 0;
    for (qsizetype i = 0; i < mButtons.size(); ++i) {
        if (mButtons[i] != button)
            mButtons[i]->setChecked(false);
        else if (button->isChecked())
            mode = static_cast<qint16>(i + 1);
    }
    mApplication->setPressMode(mode);
}
