// The part of the main window with the two glissando sliders.

#include "ui/window/MainWindow.h"

#include "app/Accessors.h"
#include "sound/PdPlayer.h"
#include "ui_MainWindow.h"

#include <QDebug>
#include <QSignalBlocker>

namespace {

float fraction(const QSlider* slider, int value)
{
    return static_cast<float>(value) / static_cast<float>(slider->maximum());
}

} // namespace

void MainWindow::on_glissSliderBig_valueChanged(int value)
{
    qDebug() << "Gliss slider value, previous value " << value;
    app::player()->queueGui(OrloEvent::GlissOneSet, fraction(ui->glissSliderBig, value));
}

void MainWindow::on_glissFineSliderBig_valueChanged(int value)
{
    app::player()->queueGui(OrloEvent::GlissTwoSet, fraction(ui->glissFineSliderBig, value));
}

void MainWindow::on_glissButton_clicked()
{
    rememberGlissButtons();
    showGlissSliders();
}

void MainWindow::on_glissFineButton_clicked()
{
    rememberGlissButtons();
    showGlissSliders();
}

void MainWindow::rememberGlissButtons()
{
    mGlissWasOn = ui->glissButton->isChecked();
    mGlissFineWasOn = ui->glissFineButton->isChecked();
}

void MainWindow::showGlissSliders()
{
    const bool one = ui->glissButton->isChecked();
    const bool two = ui->glissFineButton->isChecked();
    ui->glissSliderBig->setVisible(one);
    ui->glissFineSliderBig->setVisible(two);
    ui->glissCLineCenter->setVisible(one || two);
}

/// Both away, or back as they were.
void MainWindow::toggleGlissSliders()
{
    const bool away = ui->glissButton->isChecked() || ui->glissFineButton->isChecked();
    ui->glissButton->setChecked(!away && mGlissWasOn);
    ui->glissFineButton->setChecked(!away && mGlissFineWasOn);
    showGlissSliders();
}

void MainWindow::on_glissResetButton_clicked()
{
    for (QSlider* slider : {ui->glissSliderBig, ui->glissFineSliderBig})
        slider->setValue(slider->maximum() / 2);
}

void MainWindow::onResetGlissSliders(short which)
{
    const QSignalBlocker blockBig(ui->glissSliderBig);
    const QSignalBlocker blockFine(ui->glissFineSliderBig);
    if (which == 0 || which == 1)
        ui->glissSliderBig->setValue(ui->glissSliderBig->maximum() / 2);
    if (which == 0 || which == 2)
        ui->glissFineSliderBig->setValue(ui->glissFineSliderBig->maximum() / 2);
}
