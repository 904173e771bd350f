#include "ui/panel/ChordPresetMenus.h"

#include "app/Accessors.h"
#include "app/ApplicationServices.h"
#include "app/Settings.h"
#include "memory/ChordPresets.h"
#include "memory/SaveAndLoad.h"
#include "ui/panel/MessageBoxes.h"

#include <QComboBox>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QPushButton>

#include <utility>

namespace {

const QString PLACEHOLDER = QStringLiteral("*"); // the first item of both menus, for no choice
const QString NO_PRESET = QStringLiteral("Choose a bank and a preset first.");

// The two actions at the end are recognised by their place: a bank or preset may have the same name.
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

QString whatStays(const QString& bank, const ChordPresets::Remains& remains)
{
    constexpr qsizetype MOST = 10; // names
    QString text = QStringLiteral("The folder of bank '%1' stays: %2").arg(bank, remains.folder);
    if (!remains.names.isEmpty())
        text += QStringLiteral("\n\nStill in it:\n") + remains.names.mid(0, MOST).join(u'\n');
    if (remains.names.size() > MOST)
        text += QStringLiteral("\nand %1 more").arg(remains.names.size() - MOST);
    return text;
}

} // namespace

ChordPresetMenus::ChordPresetMenus(const Widgets& widgets, Settings* settings,
                                   ApplicationServices* application, const SaveAndLoad* files)
    : mWidgets(widgets)
    , mSettings(settings)
    , mApplication(application)
    , mLastBank(PLACEHOLDER)
    , mLastPreset(PLACEHOLDER)
{
    if (files)
        connect(files, &SaveAndLoad::written, this, &ChordPresetMenus::onFileWritten);
}

ChordPresets ChordPresetMenus::chordPresets() const
{
    return ChordPresets(mSettings->lastDirPath);
}

void ChordPresetMenus::repopulateChordBankMenu()
{
    fill(mWidgets.banks, chordPresets().banks(), QStringLiteral("bank"));
    repopulateChordSetMenu();
}

void ChordPresetMenus::repopulateChordSetMenu()
{
    const QStringList presets =
        hasNoChoice(mWidgets.banks) ? QStringList() : chordPresets().presets(mWidgets.banks->currentText());
    fill(mWidgets.presets, presets, QStringLiteral("preset"));
}

void ChordPresetMenus::updateButtons()
{
    const bool chosen = mLastPreset != PLACEHOLDER;
    mWidgets.load->setEnabled(chosen);
    mWidgets.save->setEnabled(chosen);
}

QWidget* ChordPresetMenus::window() const
{
    return mWidgets.frame->window();
}

void ChordPresetMenus::setRestricted(bool restricted)
{
    mWidgets.frame->setDisabled(restricted);
}

// ---------------------------------------------------------------- banks

void ChordPresetMenus::bankActivated()
{
    QComboBox* menu = mWidgets.banks;
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
        restore(mWidgets.presets, mLastPreset);
    } else {
        mLastBank = menu->currentText();
        repopulateChordSetMenu();
    }
    updateButtons();
}

void ChordPresetMenus::createBank()
{
    QComboBox* menu = mWidgets.banks;
    qDebug() << "New bank ...";
    const QString name =
        QInputDialog::getText(window(), QStringLiteral("New bank"), QStringLiteral("Create bank with name:"));
    const ChordPresets presets = chordPresets();
    if (name.isEmpty()) {
        restore(menu, mLastBank);
    } else if (!presets.directoryExists()) {
        showWarning(window(),
                    QStringLiteral("Error: Main directory does not exist. Please choose a directory first!"));
        restore(menu, mLastBank);
    } else if (!presets.makeBank(name)) {
        qDebug() << "Error: Failed to create new subdirectory in:" << mSettings->lastDirPath;
        showWarning(
            window(),
            QStringLiteral("Error: Could not create bank. It might already exist or name is invalid!"));
        restore(menu, mLastBank);
    } else {
        mLastBank = name;
        repopulateChordBankMenu();
        restore(menu, name);
        repopulateChordSetMenu();
    }
}

void ChordPresetMenus::removeLastBank()
{
    const QString question = QStringLiteral("Are you sure you want to remove bank '") + mLastBank
                             + QStringLiteral("' and all containing presets? This cannot be undone!");
    if (mLastBank == PLACEHOLDER)
        app::say(QStringLiteral("No bank was chosen that could be removed."));
    if (mLastBank == PLACEHOLDER || !askBeforeLoss(window(), QStringLiteral("Remove bank"), question)) {
        restore(mWidgets.banks, mLastBank);
        return;
    }
    const QString name = std::exchange(mLastBank, PLACEHOLDER);
    const ChordPresets::Remains remains = chordPresets().removeBank(name);
    repopulateChordBankMenu();
    if (!remains.folder.isEmpty())
        showNotice(window(), whatStays(name, remains));
}

// ---------------------------------------------------------------- presets

void ChordPresetMenus::presetActivated()
{
    QComboBox* menu = mWidgets.presets;
    if (hasNoChoice(mWidgets.banks) || hasNoChoice(menu)) {
        if (!hasNoChoice(menu))
            app::say(QStringLiteral("Choose a bank first, or create one."));
        restore(menu, PLACEHOLDER);
        mLastPreset = PLACEHOLDER;
    } else if (isCreate(menu)) {
        createPreset();
    } else if (isRemove(menu)) {
        removeLastPreset();
    } else {
        mLastPreset = menu->currentText();
    }
    updateButtons();
}

void ChordPresetMenus::createPreset()
{
    QComboBox* menu = mWidgets.presets;
    qDebug() << "New preset ...";
    const QString name = QInputDialog::getText(window(), QStringLiteral("New preset"),
                                               QStringLiteral("Create preset with name:"));
    const ChordPresets presets = chordPresets();
    if (name.isEmpty()) {
        restore(menu, mLastPreset);
    } else if (presets.presetExists(mLastBank, name)) {
        showWarning(window(), QStringLiteral("Preset name already exists!"));
        restore(menu, mLastPreset);
    } else if (!presets.makePreset(mLastBank, name)) {
        qDebug() << "Error: Failed to create file:" << presets.presetPath(mLastBank, name);
        showWarning(window(),
                    QStringLiteral("Error: Failed to create preset file on the disk. Name is invalid!"));
        restore(menu, mLastPreset);
    } else {
        repopulateChordSetMenu();
        restore(menu, name);
        mLastPreset = name;
    }
}

void ChordPresetMenus::removeLastPreset()
{
    const QString question = QStringLiteral("Are you sure you want to remove preset '") + mLastPreset
                             + QStringLiteral("'? This cannot be undone!");
    if (mLastPreset == PLACEHOLDER)
        app::say(QStringLiteral("No preset was chosen that could be removed."));
    if (mLastPreset == PLACEHOLDER || !askBeforeLoss(window(), QStringLiteral("Remove preset"), question)) {
        restore(mWidgets.presets, mLastPreset);
        return;
    }
    chordPresets().removePreset(mLastBank, mLastPreset);
    mLastPreset = PLACEHOLDER;
    repopulateChordSetMenu();
}

// ---------------------------------------------------------------- directory, load and save

void ChordPresetMenus::directoryClicked()
{
    const QString directory = QFileDialog::getExistingDirectory(
        window(), QStringLiteral("Choose Directory"), mSettings->lastDirPath, QFileDialog::ShowDirsOnly);
    if (directory.isEmpty())
        return;
    mSettings->lastDirPath = directory;
    repopulateChordBankMenu();
    mLastBank = PLACEHOLDER;
    mLastPreset = PLACEHOLDER;
    updateButtons();
}

/// Empty while either menu shows no choice. The buttons can be enabled all the same, after a change
/// of bank.
QString ChordPresetMenus::chosenPresetFile() const
{
    if (hasNoChoice(mWidgets.banks) || hasNoChoice(mWidgets.presets))
        return QString();
    return chordPresets().presetPath(mWidgets.banks->currentText(), mWidgets.presets->currentText());
}

void ChordPresetMenus::loadClicked()
{
    const QString path = chosenPresetFile();
    if (path.isEmpty()) {
        app::say(NO_PRESET);
        return;
    }
    QDir file(path);
    if (mApplication->loadChordsFromDiskToStorage(&file))
        emit chordsLoaded();
    else
        showWarning(window(), QStringLiteral("Error: Could not load preset from disk!"));
}

void ChordPresetMenus::saveClicked()
{
    const QString path = chosenPresetFile();
    if (path.isEmpty()) {
        app::say(NO_PRESET);
        return;
    }
    QDir file(path);
    if (!mApplication->saveStoredChordsToDisk(&file))
        showWarning(window(), QStringLiteral("Error: Could not safe preset to disk!"));
}

void ChordPresetMenus::onFileWritten(const QString& path)
{
    const QString chosen = chosenPresetFile();
    if (!chosen.isEmpty() && QDir(chosen).path() == path) // not the chords of the running program
        app::say(QStringLiteral("The chords are saved as preset '%1'.").arg(mWidgets.presets->currentText()));
}

void ChordPresetMenus::press(QPushButton* button)
{
    button->animateClick();
    if (!button->isEnabled())
        app::say(NO_PRESET);
}

void ChordPresetMenus::pressLoad()
{
    press(mWidgets.load);
}

void ChordPresetMenus::pressSave()
{
    press(mWidgets.save);
}
