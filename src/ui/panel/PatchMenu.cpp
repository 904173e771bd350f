#include "ui/panel/PatchMenu.h"

#include "app/Accessors.h"
#include "app/EndRequest.h"
#include "app/LogText.h"
#include "app/Settings.h"
#include "sound/PatchFolder.h"
#include "sound/PdPlayer.h"
#include "sound/VoicePatchCheck.h"
#include "ui/panel/MessageBoxes.h"

#include <QComboBox>
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
    return PatchFolder::shippedVoices(QCoreApplication::applicationDirPath());
}

} // namespace

PatchMenu::PatchMenu(QComboBox* menu, PdPlayer* player, Settings* settings)
    : mMenu(menu)
    , mPlayer(player)
    , mSettings(settings)
{
}

void PatchMenu::initPatchMenu()
{
    const QDir directory(patchDirectory());
    const QFileInfoList files = directory.entryInfoList(QDir::Files, QDir::Name);
    if (files.isEmpty())
        qCritical() << "Found no presets in patch dir" << directory.absolutePath();
    for (const QFileInfo& file : files)
        addPatchToMenu(file.absoluteFilePath());
}

void PatchMenu::addPatchToMenu(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (mMenu->findData(absolute) >= 0)
        return;
    QString name = absolute.mid(absolute.lastIndexOf(u'/') + 1);
    if (name.endsWith(PATCH_ENDING))
        name.chop(PATCH_ENDING.size());
    mMenu->addItem(name, absolute);
}

void PatchMenu::loadDefaultPatch()
{
    const QString& name = mSettings->defaultPatch;
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

void PatchMenu::loadPatch(const QString& path)
{
    if (path.isEmpty() || EndRequest::isMade)
        return;
    mNextVoice.clear();
    if (mChangingVoice) { // a device can ask while a voice is tried, or while a box tells of it
        mNextVoice = path;
        return;
    }
    const QScopedValueRollback changing(mChangingVoice, true);
    const QString absolute = QFileInfo(path).absoluteFilePath();
    qWarning() << "Loading voice patch" << absolute;
    if (const std::optional<QString> reason = changeVoice(absolute)) {
        tellPatchFailed(absolute, *reason);
    } else {
        setNoPatchLoaded(false);
        addPatchToMenu(absolute);
        mCurrentPatch = mMenu->findData(absolute);
        mMenu->setCurrentIndex(mCurrentPatch);
        mSettings->defaultPatch = mMenu->currentText() + PATCH_ENDING;
    }
    if (mNextVoice.isEmpty())
        return;
    if (const int next = mMenu->findData(mNextVoice); next >= 0)
        mMenu->setCurrentIndex(next); // further steps go on from there
    waitForMore();
}

void PatchMenu::tellPatchFailed(const QString& path, const QString& reason)
{
    QMessageBox box(QMessageBox::Critical, QCoreApplication::applicationName(),
                    QStringLiteral("Failed to load patch %1.").arg(path), QMessageBox::Ok, mMenu->window());
    box.setInformativeText(reason);
    if (!EndRequest::isMade) // then nobody may be there to close it
        box.exec();
    if (mCurrentPatch == -1)
        setNoPatchLoaded(true);
    else
        mMenu->setCurrentIndex(mCurrentPatch);
}

/// Nothing once the voice plays; otherwise what is wrong with it, which can be an empty text. The former
/// one plays on then.
std::optional<QString> PatchMenu::changeVoice(const QString& path)
{
    if (mPlayer->isSoundOver())
        return NO_MORE_SOUND;
    if (const QString reason = VoicePatchCheck().whyNot(path); !reason.isEmpty()) {
        qCritical().noquote() << "The voice" << logText(path) << "is not loaded:" << reason;
        return reason;
    }
    const bool opened = openVoicePatch(path);
    if (mPlayer->isSoundOver())
        return NO_MORE_SOUND;
    const bool plays =
        opened || (mCurrentPatch != -1 && openVoicePatch(mMenu->itemData(mCurrentPatch).toString()));
    if (plays)
        emit patchOpened();
    return opened ? std::nullopt : std::optional<QString>(QString());
}

/// Closes the patch and opens it with this voice.
bool PatchMenu::openVoicePatch(const QString& path)
{
    mPlayer->unloadPatch();
    const PatchFolder folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    if (!folder.putVoice(path))
        return false;
    if (!mPlayer->loadPatch(QFileInfo(folder.mainPatch()))) {
        qCritical() << "Failed to load" << folder.mainPatch() << "after copying in voice" << folder.voice();
        return false;
    }
    return true;
}

void PatchMenu::setNoPatchLoaded(bool on)
{
    const int index = mMenu->findText(NONE_LOADED);
    if (on) {
        if (index < 0)
            mMenu->addItem(NONE_LOADED, QString());
        mMenu->setCurrentIndex(mMenu->count() - 1);
    } else if (index >= 0) {
        mMenu->removeItem(index);
    }
}

void PatchMenu::stepPatch(int by)
{
    const int count = mMenu->count();
    if (count == 0)
        return;
    const int index = (mMenu->currentIndex() + count + by) % count;
    mMenu->setCurrentIndex(index);
    if (mWaitsForMore || mChangingVoice) {
        mNextVoice = mMenu->itemData(index).toString();
        return;
    }
    patch_by_Index(index);
    waitForMore(); // hundreds may have come while the voice was opened
}

void PatchMenu::waitForMore()
{
    if (std::exchange(mWaitsForMore, true))
        return;
    QMetaObject::invokeMethod(this, &PatchMenu::loadNextVoice, Qt::QueuedConnection);
}

/// The one that the steps have led to meanwhile.
void PatchMenu::loadNextVoice()
{
    mWaitsForMore = false;
    if (mChangingVoice) // whose end comes here again
        return;
    const QString path = std::exchange(mNextVoice, QString());
    const bool isOpen = path == mMenu->itemData(mCurrentPatch).toString() && mPlayer->isPatchOpen();
    if (path.isEmpty() || isOpen)
        return;
    loadPatch(path);
    waitForMore();
}

void PatchMenu::patch_by_Index(int index)
{
    if (index >= mMenu->count())
        app::say(QStringLiteral("There is no patch %1 in the menu.").arg(index + 1));
    loadPatch(mMenu->itemData(index).toString());
}

/// At first use: as long as no voice from elsewhere was ever chosen.
void PatchMenu::tellThatVoicesArePrograms()
{
    if (std::exchange(mToldOfPrograms, true) || mSettings->lastBrowsedPatchPath != QDir::homePath())
        return;
    showNotice(mMenu->window(),
               QStringLiteral("A voice is a program: a Pure Data file can write files and open network "
                              "connections, so open only those that you trust."));
}

void PatchMenu::browse()
{
    tellThatVoicesArePrograms();
    const QString path =
        QFileDialog::getOpenFileName(mMenu->window(), QStringLiteral("Open Patch"),
                                     mSettings->lastBrowsedPatchPath, QStringLiteral("PD Patches (*.pd)"));
    if (path.isEmpty())
        return;
    mSettings->lastBrowsedPatchPath = QFileInfo(path).absolutePath();
    loadPatch(path);
}
