#include "ui/panel/GlissandoSliders.h"

#include "app/Accessors.h"
#include "model/Orlo.h"
#include "sound/GlissandoMapping.h"
#include "sound/PdPlayer.h"
#include "ui/panel/SliderFraction.h"

#include <QDebug>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

#include <cmath>

GlissandoSliders::GlissandoSliders(const Widgets& widgets, PdPlayer* player)
    : mWidgets(widgets)
    , mPlayer(player)
{
}

void GlissandoSliders::queueCoarse() const
{
    qDebug() << "Gliss slider value, previous value " << mWidgets.coarse->value();
    mPlayer->queueGui(OrloEvent::GlissOneSet, sliderFraction(mWidgets.coarse));
}

void GlissandoSliders::queueFine() const
{
    mPlayer->queueGui(OrloEvent::GlissTwoSet, sliderFraction(mWidgets.fine));
}

void GlissandoSliders::buttonClicked()
{
    mCoarseWasOn = mWidgets.coarseButton->isChecked();
    mFineWasOn = mWidgets.fineButton->isChecked();
    showSliders();
}

void GlissandoSliders::toggleGlissSliders()
{
    const bool hide = mWidgets.coarseButton->isChecked() || mWidgets.fineButton->isChecked();
    mWidgets.coarseButton->setChecked(!hide && mCoarseWasOn);
    mWidgets.fineButton->setChecked(!hide && mFineWasOn);
    showSliders();
}

void GlissandoSliders::showSliders()
{
    const bool coarse = mWidgets.coarseButton->isChecked();
    const bool fine = mWidgets.fineButton->isChecked();
    mWidgets.coarse->setVisible(coarse);
    mWidgets.fine->setVisible(fine);
    mWidgets.centreLine->setVisible(coarse || fine);
}

int GlissandoSliders::centreOf(const QSlider* slider)
{
    return slider->maximum() / 2;
}

void GlissandoSliders::centreBoth()
{
    for (QSlider* slider : {mWidgets.coarse, mWidgets.fine})
        slider->setValue(centreOf(slider));
}

QString GlissandoSliders::valueText(const QSlider* slider, float range)
{
    const double cents = glissando::cents(range, sliderFraction(slider));
    // To a tenth; + 0.0: no negative zero.
    return QStringLiteral("%1%2 cents")
        .arg(cents > 0.0 ? QStringLiteral("+") : QString())
        .arg(std::round(cents * 10.0) / 10.0 + 0.0);
}

void GlissandoSliders::tellWhenIdle()
{
    if (app::orlo()->selectedRatios().isEmpty())
        app::say(QStringLiteral("Nothing is selected, so nothing glides. Press a ball with Alt or the middle "
                                "button to select it."));
}

void GlissandoSliders::centreFine()
{
    if (mWidgets.fine->isEnabled())
        mWidgets.fine->setValue(centreOf(mWidgets.fine));
}

void GlissandoSliders::showReset(short which)
{
    const QSignalBlocker blockCoarse(mWidgets.coarse);
    const QSignalBlocker blockFine(mWidgets.fine);
    if (which == 0 || which == 1)
        mWidgets.coarse->setValue(centreOf(mWidgets.coarse));
    if (which == 0 || which == 2)
        mWidgets.fine->setValue(centreOf(mWidgets.fine));
}

void GlissandoSliders::setRestricted(bool restricted)
{
    mWidgets.coarse->setDisabled(restricted);
    mWidgets.fine->setDisabled(restricted);
}
