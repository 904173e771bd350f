// The part of the main window with the menus of chord banks and presets on disk.

#include "ui/window/MainWindow.h"

#include "app/Accessors.h"
#include "app/ApplicationServices.h"
#include "app/Settings.h"
#include "memory/ChordPresets.h"
#include "ui_MainWindow.h"

#include <QComboBox>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>

namespace {

const QString PLACEHOLDER = QStringLiteral("*"); // no choice; the first item of both menus

// A bank or preset may be named like one of the two actions, so they are told apart by their place.
bool isCreate(const QComboBox* menu)
{
    return menu->currentIndex() == menu->count() - 2;
}

bool isRemove(const QComboBox* menu)
{
    return menu->currentIndex() == menu->count() - 1;
}

bool hasNoChoice(const QComboBox* menu)
{
    return menu->currentText() == PLACEHOLDER;
}

/// Back on this choice, or on none when it has gone from the disk.
void restore(QComboBox* menu, const QString& choice)
{
    menu->setCurrentIndex(qMax(0, menu->findText(choice)));
}

void fill(QComboBox* menu, const QStringList& names, const QString& kind)
{
    menu->clear();
    menu->addItem(PLACEHOLDER);
    menu->addItems(names);
    menu->addItem(QStringLiteral("-- create new %1 --").arg(kind));
    menu->addItem(QStringLiteral("-- remove last chosen %1 --").arg(kind));
}

} // namespace

ChordPresets MainWindow::chordPresets() const
{
    return ChordPresets(app::settings()->lastDirPath);
}

void MainWindow::repopulateChordBankMenu()
{
    fill(ui->saveChordBankMenu, chordPresets().banks(), QStringLiteral("bank"));
    repopulateChordSetMenu();
}

void MainWindow::repopulateChordSetMenu()
{
    const QStringList presets = hasNoChoice(ui->saveChordBankMenu)
                                    ? QStringList()
                                    : chordPresets().presets(ui->saveChordBankMenu->currentText());
    fill(ui->saveChordSetMenu, presets, QStringLiteral("preset"));
}

void MainWindow::updatePresetButtons()
{
    const bool chosen = mLastPreset != PLACEHOLDER;
    ui->saveChordSetLoadButton->setEnabled(chosen);
    ui->saveChordSetSaveButton->setEnabled(chosen);
}

// ---------------------------------------------------------------- banks

void MainWindow::on_saveChordBankMenu_activated()
{
    QComboBox* menu = ui->saveChordBankMenu;
    if (hasNoChoice(menu)) {
        mLastBank = PLACEHOLDER;
        mLastPreset = PLACEHOLDER;
        repopulateChordSetMenu();
    } else if (isCreate(menu)) {
        createBank();
    } else if (isRemove(menu)) {
        removeLastBank();
    } else if (menu->currentText() == mLastBank) {
        repopulateChordSetMenu();
        restore(ui->saveChordSetMenu, mLastPreset);
    } else {
        mLastBank = menu->currentText();
        repopulateChordSetMenu();
    }
    updatePresetButtons();
}

void MainWindow::createBank()
{
    QComboBox* menu = ui->saveChordBankMenu;
    qDebug() << "New bank ...";
    const QString name =
        QInputDialog::getText(this, QStringLiteral("New bank"), QStringLiteral("Create bank with name:"));
    const ChordPresets presets = chordPresets();
    if (name.isEmpty()) {
        restore(menu, mLastBank);
    } else if (!presets.directoryExists()) {
        tell(QStringLiteral("Error: Main directory does not exist. Please choose a directory first!"));
        restore(menu, mLastBank);
    } else if (!presets.makeBank(name)) {
        qDebug() << "Error: Failed to create new subdirectory in:" << app::settings()->lastDirPath;
        tell(QStringLiteral("Error: Could not create bank. It might already exist or name is invalid!"));
        restore(menu, mLastBank);
    } else {
        mLastBank = name;
        repopulateChordBankMenu();
        restore(menu, name);
        repopulateChordSetMenu();
    }
}

void MainWindow::removeLastBank()
{
    const QString question = QStringLiteral("Are you sure you want to remove bank '") + mLastBank
                             + QStringLiteral("' and all containing presets? This cannot be undone!");
    if (mLastBank == PLACEHOLDER || !ask(QStringLiteral("Remove bank"), question)) {
        restore(ui->saveChordBankMenu, mLastBank);
        return;
    }
    chordPresets().removeBank(mLastBank);
    mLastBank = PLACEHOLDER;
    repopulateChordBankMenu();
}

// ---------------------------------------------------------------- presets

void MainWindow::on_saveChordSetMenu_activated()
{
    QComboBox* menu = ui->saveChordSetMenu;
    if (hasNoChoice(ui->saveChordBankMenu) || hasNoChoice(menu)) {
        restore(menu, PLACEHOLDER);
        mLastPreset = PLACEHOLDER;
    } else if (isCreate(menu)) {
        createPreset();
    } else if (isRemove(menu)) {
        removeLastPreset();
    } else {
        mLastPreset = menu->currentText();
    }
    updatePresetButtons();
}

void MainWindow::createPreset()
{
    QComboBox* menu = ui->saveChordSetMenu;
    qDebug() << "New preset ...";
    const QString name =
        QInputDialog::getText(this, QStringLiteral("New preset"), QStringLiteral("Create preset with name:"));
    const ChordPresets presets = chordPresets();
    if (name.isEmpty()) {
        restore(menu, mLastPreset);
    } else if (presets.presetExists(mLastBank, name)) {
        tell(QStringLiteral("Preset name already exists!"));
        restore(menu, mLastPreset);
    } else if (!presets.makePreset(mLastBank, name)) {
        qDebug() << "Error: Failed to create file:" << presets.presetPath(mLastBank, name);
        tell(QStringLiteral("Error: Failed to create preset file on the disk. Name is invalid!"));
        restore(menu, mLastPreset);
    } else {
        repopulateChordSetMenu();
        restore(menu, name);
        mLastPreset = name;
    }
}

void MainWindow::removeLastPreset()
{
    const QString question = QStringLiteral("Are you sure you want to remove preset '") + mLastPreset
                             + QStringLiteral("'? This cannot be undone!");
    if (mLastPreset == PLACEHOLDER || !ask(QStringLiteral("Remove preset"), question)) {
        restore(ui->saveChordSetMenu, mLastPreset);
        return;
    }
    chordPresets().removePreset(mLastBank, mLastPreset);
    mLastPreset = PLACEHOLDER;
    repopulateChordSetMenu();
}

// ---------------------------------------------------------------- directory, load and save

void MainWindow::on_saveChordDirectoryButton_clicked()
{
    const QString directory = QFileDialog::getExistingDirectory(
        this, QStringLiteral("Choose Directory"), app::settings()->lastDirPath, QFileDialog::ShowDirsOnly);
    if (directory.isEmpty())
        return;
    app::settings()->lastDirPath = directory;
    repopulateChordBankMenu();
    mLastBank = PLACEHOLDER;
    mLastPreset = PLACEHOLDER;
    updatePresetButtons();
}

/// Empty while either menu shows no choice; the buttons may be enabled even so, after a change of
/// bank.
QString MainWindow::chosenPresetFile() const
{
    if (hasNoChoice(ui->saveChordBankMenu) || hasNoChoice(ui->saveChordSetMenu))
        return QString();
    return chordPresets().presetPath(ui->saveChordBankMenu->currentText(),
                                     ui->saveChordSetMenu->currentText());
}

void MainWindow::on_saveChordSetLoadButton_clicked()
{
    const QString path = chosenPresetFile();
    if (path.isEmpty())
        return;
    QDir file(path);
    if (app::application()->loadChordsFromDiskToStorage(&file))
        refreshChordButtons();
    else
        tell(QStringLiteral("Error: Could not load preset from disk!"));
}

void MainWindow::on_saveChordSetSaveButton_clicked()
{
    const QString path = chosenPresetFile();
    if (path.isEmpty())
        return;
    QDir file(path);
    if (!app::application()->saveStoredChordsToDisk(&file))
        tell(QStringLiteral("Error: Could not safe preset to disk!"));
}
