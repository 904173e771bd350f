#include "ui/keyboard/PlayFromMidi.h"

#include "files/SetAside.h"
#include "keyboard/MidiPlaying.h"
#include "ui/keyboard/ControllerActions.h"
#include "ui/keyboard/ControllerPage.h"
#include "ui/keyboard/KeyLabels.h"
#include "ui/keyboard/PlayFromMidiDialog.h"

#include <QDebug>
#include <QPoint>
#include <QWidget>

namespace {

// To the upper right corner of the window: below the menu.
constexpr QPoint CORNER(12, 76);

} // namespace

PlayFromMidi::PlayFromMidi(const QList<OrloView*>& views, MidiPlaying& playing, QWidget* window)
    : QObject(window)
    , mPlaying(playing)
    , mWindow(window)
    , mLabels(new KeyLabels(views, playing, this))
    , mActions(new ControllerActions(window))
{
    mActions->setParent(this);
    int dropped = 0;
    mActions->setMap(ControllerMap::fromJson(playing.controllers(), &dropped));
    if (dropped > 0) {
        qWarning() << "In" << playing.path() << dropped << "controllers are left out.";
        SetAside::mark(playing.path());
    }
    connect(&playing, &MidiPlaying::messageArrived, this, &PlayFromMidi::takeMessage);
    connect(&playing, &MidiPlaying::inputsChanged, mActions, &ControllerActions::forgetPlaces);
}

void PlayFromMidi::open()
{
    if (!mDialog)
        makeDialog();
    mDialog->show();
    mDialog->raise();
    mDialog->activateWindow();
}

void PlayFromMidi::makeDialog()
{
    mDialog = new PlayFromMidiDialog(mPlaying, mWindow);
    // Over the cards, so that the lattice stays free for learning.
    const QRect window = mWindow->geometry();
    mDialog->move(window.right() - mDialog->width() - CORNER.x(), window.top() + CORNER.y());
    mControllers = new ControllerPage;
    mControllers->setMap(ControllerMap::fromJson(mPlaying.controllers()));
    mDialog->addPage(mControllers, QStringLiteral("Controllers"));
    connect(mControllers, &ControllerPage::mapChanged, this, &PlayFromMidi::takeMap);
    connect(mDialog, &PlayFromMidiDialog::shownChanged, mLabels, &KeyLabels::setDialogOpen);
}

void PlayFromMidi::takeMap(const ControllerMap& map)
{
    mPlaying.setControllers(map.entries().isEmpty() ? QJsonObject() : map.toJson());
    mActions->setMap(map);
}

void PlayFromMidi::takeMessage(MidiInMessage message)
{
    const auto source =
        ControllerSource::of(mPlaying.inputName(message.input), message.status, message.data1);
    if (!source)
        return;
    mActions->take(*source, message.data2);
    if (mControllers)
        mControllers->take(*source, message.data2);
}
