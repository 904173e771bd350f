// The part of the main window that lists the voice patches and loads one.

#include "ui/window/MainWindow.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "sound/PdPlayer.h"
#include "sound/VoiceCheck.h"
#include "ui_MainWindow.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QScopedValueRollback>
#include <QStandardPaths>

#include <utility>

namespace {

const QString NONE_LOADED = QStringLiteral("None loaded");
const QString PATCH_ENDING = QStringLiteral(".pd");
const QString NO_MORE_SOUND =
    QStringLiteral("A voice never came up. There is no sound until the program is started again; "
                   "everything can still be saved.");

QString patchDirectory()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/patches");
}

QString runtimeFile(const QString& name)
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/patch/")
           + name;
}

} // namespace

void MainWindow::initPatchMenu()
{
    const QDir directory(patchDirectory());
    const QFileInfoList files = directory.entryInfoList(QDir::Files, QDir::Name);
    if (files.isEmpty())
        qCritical() << "Found no presets in patch dir" << directory.absolutePath();
    for (const QFileInfo& file : files)
        addPatchToMenu(file.absoluteFilePath());
}

void MainWindow::addPatchToMenu(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (ui->patchMenu->findData(absolute) >= 0)
        return;
    QString name = absolute.mid(absolute.lastIndexOf(u'/') + 1);
    if (name.endsWith(PATCH_ENDING))
        name.chop(PATCH_ENDING.size());
    ui->patchMenu->addItem(name, absolute);
}

void MainWindow::loadDefaultPatch()
{
    const QString& name = app::settings()->defaultPatch;
    const QString chosen = patchDirectory() + u'/' + name;
    if (!name.isEmpty() && QFileInfo(chosen).isFile()) {
        loadPatch(chosen);
        return;
    }
    qWarning() << "No default patch name found, use Sine.";
    const QString sine = patchDirectory() + QStringLiteral("/Sine.pd");
    if (QFileInfo(sine).isFile()) {
        loadPatch(sine);
        return;
    }
    qWarning() << "Sine patch not found, set None loaded.";
    setNoPatchLoaded(true);
}

void MainWindow::loadPatch(const QString& path)
{
    if (path.isEmpty())
        return;
    if (mChangingVoice) { // a device can ask while a voice is tried
        mNextVoice = path;
        return;
    }
    const QString absolute = QFileInfo(path).absoluteFilePath();
    qWarning() << "Loading voice patch" << absolute;
    if (const std::optional<QString> reason = changeVoice(absolute)) {
        tellPatchFailed(absolute, *reason);
    } else {
        setNoPatchLoaded(false);
        addPatchToMenu(absolute);
        mCurrentPatch = ui->patchMenu->findData(absolute);
        ui->patchMenu->setCurrentIndex(mCurrentPatch);
        app::settings()->defaultPatch = ui->patchMenu->currentText() + PATCH_ENDING;
    }
    if (!mNextVoice.isEmpty())
        loadPatch(std::exchange(mNextVoice, QString()));
}

void MainWindow::tellPatchFailed(const QString& path, const QString& reason)
{
    QMessageBox box(QMessageBox::Critical, QCoreApplication::applicationName(),
                    QStringLiteral("Failed to load patch %1.").arg(path), QMessageBox::Ok, this);
    box.setInformativeText(reason);
    box.exec();
    if (mCurrentPatch == -1)
        setNoPatchLoaded(true);
    else
        ui->patchMenu->setCurrentIndex(mCurrentPatch);
}

/// Nothing once the voice plays; otherwise what is wrong with it, which can be an empty text. The former
/// one plays on then.
std::optional<QString> MainWindow::changeVoice(const QString& path)
{
    const QScopedValueRollback changing(mChangingVoice, true);
    if (app::player()->isSoundOver())
        return NO_MORE_SOUND;
    if (const QString reason = VoiceCheck().whyNot(path); !reason.isEmpty()) {
        qCritical().noquote() << "The voice" << path << "is not loaded:" << reason;
        return reason;
    }
    const bool opened = openVoicePatch(path);
    if (app::player()->isSoundOver())
        return NO_MORE_SOUND;
    const bool plays =
        opened || (mCurrentPatch != -1 && openVoicePatch(ui->patchMenu->itemData(mCurrentPatch).toString()));
    if (plays)
        tellPatch();
    return opened ? std::nullopt : std::optional<QString>(QString());
}

/// What a new patch does not know yet.
void MainWindow::tellPatch()
{
    on_volumeSlider_valueChanged(ui->volumeSlider->value());
    for (int number = 1; number <= NodeParameters::MACRO_COUNT; ++number)
        setMacro(number - 1, macroSlider(number)->value());
}

/// The main patch is always the same file; the voice that it instantiates changes.
bool MainWindow::openVoicePatch(const QString& path)
{
    app::player()->unloadPatch();
    const QString voice = runtimeFile(QStringLiteral("orlo_voice.pd"));
    if (QFile::exists(voice) && !QFile::remove(voice)) {
        qCritical() << "Failed to delete" << voice;
        return false;
    }
    if (!QFile::copy(path, voice)) {
        qCritical() << "Failed to copy" << path << "to the runtime patch location" << voice;
        return false;
    }
    const QString main = runtimeFile(QStringLiteral("orlo_main.pd"));
    if (!app::player()->loadPatch(QFileInfo(main))) {
        qCritical() << "Failed to load" << main << "after copying in voice" << voice;
        return false;
    }
    return true;
}

void MainWindow::setNoPatchLoaded(bool on)
{
    const int index = ui->patchMenu->findText(NONE_LOADED);
    if (on) {
        if (index < 0)
            ui->patchMenu->addItem(NONE_LOADED, QString());
        ui->patchMenu->setCurrentIndex(ui->patchMenu->count() - 1);
    } else if (index >= 0) {
        ui->patchMenu->removeItem(index);
    }
}

void MainWindow::stepPatch(int by)
{
    const int count = ui->patchMenu->count();
    if (count == 0)
        return;
    const int index = (ui->patchMenu->currentIndex() + count + by) % count;
    ui->patchMenu->setCurrentIndex(index);
    patch_by_Index(index);
}

void MainWindow::patch_by_Index(int index)
{
    loadPatch(ui->patchMenu->itemData(index).toString());
}

void MainWindow::on_patchMenu_activated(int index)
{
    patch_by_Index(index);
}

void MainWindow::on_patchDecButton_clicked()
{
    stepPatch(-1);
}

void MainWindow::on_patchIncButton_clicked()
{
    stepPatch(1);
}

void MainWindow::onPatchDecRequested()
{
    on_patchDecButton_clicked();
}

void MainWindow::onPatchIncRequested()
{
    on_patchIncButton_clicked();
}

void MainWindow::on_loadPatchButton_clicked()
{
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open Patch"),
                                                      app::settings()->lastBrowsedPatchPath,
                                                      QStringLiteral("PD Patches (*.pd)"));
    if (path.isEmpty())
        return;
    app::settings()->lastBrowsedPatchPath = QFileInfo(path).absolutePath();
    loadPatch(path);
}
