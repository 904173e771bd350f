// The part of the main window that stores and recalls chords.

#include "ui/window/MainWindow.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "memory/StoreAndRecall.h"
#include "sound/PdPlayer.h"
#include "ui_MainWindow.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace {

/// Turning one of a pair on turns the other off.
void exclude(const QPushButton* clicked, QPushButton* other)
{
    if (clicked->isChecked())
        other->setChecked(false);
}

} // namespace

void MainWindow::collectChordButtons()
{
    for (int number = 1; number <= StoreAndRecall::LAST_SLOT; ++number)
        mChordButtons.append(
            findChild<QPushButton*>(QStringLiteral("chordButton_%1").arg(number, 2, 10, QLatin1Char('0'))));
}

bool MainWindow::ask(const QString& title, const QString& question)
{
    return QMessageBox::question(this, title, question, QMessageBox::Yes | QMessageBox::No)
           == QMessageBox::Yes;
}

void MainWindow::tell(const QString& text)
{
    QMessageBox::warning(this, QCoreApplication::applicationName(), text, QMessageBox::Ok);
}

// ---------------------------------------------------------------- the twenty buttons

// clang-format off
void MainWindow::on_chordButton_01_clicked() { chordButtonClicked(1); }
void MainWindow::on_chordButton_02_clicked() { chordButtonClicked(2); }
void MainWindow::on_chordButton_03_clicked() { chordButtonClicked(3); }
void MainWindow::on_chordButton_04_clicked() { chordButtonClicked(4); }
void MainWindow::on_chordButton_05_clicked() { chordButtonClicked(5); }
void MainWindow::on_chordButton_06_clicked() { chordButtonClicked(6); }
void MainWindow::on_chordButton_07_clicked() { chordButtonClicked(7); }
void MainWindow::on_chordButton_08_clicked() { chordButtonClicked(8); }
void MainWindow::on_chordButton_09_clicked() { chordButtonClicked(9); }
void MainWindow::on_chordButton_10_clicked() { chordButtonClicked(10); }
void MainWindow::on_chordButton_11_clicked() { chordButtonClicked(11); }
void MainWindow::on_chordButton_12_clicked() { chordButtonClicked(12); }
void MainWindow::on_chordButton_13_clicked() { chordButtonClicked(13); }
void MainWindow::on_chordButton_14_clicked() { chordButtonClicked(14); }
void MainWindow::on_chordButton_15_clicked() { chordButtonClicked(15); }
void MainWindow::on_chordButton_16_clicked() { chordButtonClicked(16); }
void MainWindow::on_chordButton_17_clicked() { chordButtonClicked(17); }
void MainWindow::on_chordButton_18_clicked() { chordButtonClicked(18); }
void MainWindow::on_chordButton_19_clicked() { chordButtonClicked(19); }
void MainWindow::on_chordButton_20_clicked() { chordButtonClicked(20); }
// clang-format on

/// The click has toggled the button already: each way ends with what the memory says.
void MainWindow::chordButtonClicked(int number)
{
    if (ui->chordClearButton->isChecked()) {
        app::storeAndRecall()->clearRatios(number);
        setChordButton(number, false);
    } else if (ui->chordStoreToButton->isChecked()) {
        storeChord(number);
    } else {
        recallChord(number);
    }
}

void MainWindow::storeChord(int number)
{
    StoreAndRecall* memory = app::storeAndRecall();
    if (!memory->isAnythingPlaying())
        tell(QStringLiteral("Nothing to be stored!"));
    else if (memory->isChordEmpty(number) || ask(QString(), QStringLiteral("Replace?")))
        memory->storeRatios(number);
    setChordButton(number, !memory->isChordEmpty(number));
}

void MainWindow::recallChord(int number)
{
    StoreAndRecall* memory = app::storeAndRecall();
    if (memory->isChordEmpty(number)) {
        setChordButton(number, false);
        return;
    }
    int mode = StoreAndRecall::Standard;
    if (ui->chordAdditiveRecallButton->isChecked())
        mode = StoreAndRecall::Additive;
    else if (ui->chordAlternatingRecallButton->isChecked())
        mode = StoreAndRecall::Alternating;

    if (app::settings()->monophonic && memory->getNumberOfRatios(number) > 1
        && ask(QStringLiteral("Monophonic"),
               QStringLiteral("We are in monophonic mode but you are recalling more than one note. Switch to "
                              "polyphonic?"))) {
        ui->monoButton->setChecked(false);
        ui->polyButton->setChecked(true);
        on_polyButton_clicked();
    }
    memory->recallRatios(number, mode);
    app::player()->queueGui(OrloEvent::NodesRecalled, 1.0F);
    setChordButton(number, true);
}

void MainWindow::overrideChordButtonStorage(int number)
{
    StoreAndRecall* memory = app::storeAndRecall();
    memory->clearRatios(number);
    memory->storeRatios(number);
    setChordButton(number, !memory->isChordEmpty(number));
}

void MainWindow::reloadAllSoundingRatios()
{
    constexpr int scratch = 0;
    StoreAndRecall* memory = app::storeAndRecall();
    memory->clearRatios(scratch);
    memory->storeRatios(scratch);
    memory->recallRatios(scratch, StoreAndRecall::Standard);
    app::player()->queueGui(OrloEvent::NodesRecalled, 1.0F);
    memory->clearRatios(scratch);
}

void MainWindow::setChordButton(int number, bool on)
{
    mChordButtons[number - 1]->setChecked(on);
}

void MainWindow::refreshChordButtons()
{
    for (int number = 1; number <= StoreAndRecall::LAST_SLOT; ++number)
        setChordButton(number, !app::storeAndRecall()->isChordEmpty(number));
}

void MainWindow::clearAllChordButtons()
{
    app::storeAndRecall()->clearAll();
    refreshChordButtons();
}

// ---------------------------------------------------------------- what a press on them means

void MainWindow::on_chordStoreToButton_clicked()
{
    exclude(ui->chordStoreToButton, ui->chordClearButton);
}

void MainWindow::on_chordClearButton_clicked()
{
    exclude(ui->chordClearButton, ui->chordStoreToButton);
}

void MainWindow::on_chordAdditiveRecallButton_clicked()
{
    exclude(ui->chordAdditiveRecallButton, ui->chordAlternatingRecallButton);
}

void MainWindow::on_chordAlternatingRecallButton_clicked()
{
    exclude(ui->chordAlternatingRecallButton, ui->chordAdditiveRecallButton);
}

void MainWindow::cycleRecallMode()
{
    if (mRestricted)
        return;
    if (ui->chordAdditiveRecallButton->isChecked()) {
        ui->chordAdditiveRecallButton->setChecked(false);
        ui->chordAlternatingRecallButton->setChecked(true);
    } else if (ui->chordAlternatingRecallButton->isChecked()) {
        ui->chordAlternatingRecallButton->setChecked(false);
    } else {
        ui->chordAdditiveRecallButton->setChecked(true);
    }
}

void MainWindow::chooseChordRow(int row)
{
    if (mRestricted)
        return;
    mChordRow = row;
    ui->chordRowButton_01->setChecked(row == 0);
    ui->chordRowButton_02->setChecked(row == 1);
}

void MainWindow::on_chordRowButton_01_clicked()
{
    chooseChordRow(0);
}

void MainWindow::on_chordRowButton_02_clicked()
{
    chooseChordRow(1);
}

void MainWindow::on_chordClearAllButton_clicked()
{
    if (app::storeAndRecall()->isStorageEmpty() || !ask(QString(), QStringLiteral("Clear all memory?")))
        return;
    clearAllChordButtons();
}

void MainWindow::on_chordHoldButton_clicked()
{
    app::player()->queueGui(OrloEvent::NodesHold, ui->chordHoldButton->isChecked() ? 1.0F : 0.0F);
    if (!app::storeAndRecall()->isAnythingPlaying())
        ui->chordHoldButton->setChecked(false); // there is nothing that it could hold
}
