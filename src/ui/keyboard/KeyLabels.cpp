#include "ui/keyboard/KeyLabels.h"

#include "keyboard/KeysOfPitch.h"
#include "keyboard/MidiPlaying.h"
#include "ui/keyboard/KeyLabelItem.h"
#include "ui/lattice/OrloView.h"

#include <QGraphicsScene>

KeyLabels::KeyLabels(const QList<OrloView*>& views, const MidiPlaying& playing, QObject* parent)
    : QObject(parent)
    , mViews(views)
    , mPlaying(playing)
{
    connect(&playing, &MidiPlaying::layoutsChanged, this, &KeyLabels::update);
    connect(&playing, &MidiPlaying::showsKeysChanged, this, &KeyLabels::update);
    update();
}

void KeyLabels::setDialogOpen(bool open)
{
    mDialogOpen = open;
    update();
}

void KeyLabels::update()
{
    for (const QPointer<KeyLabelItem>& item : std::as_const(mItems))
        delete item;
    mItems.clear();
    if (!mDialogOpen && !mPlaying.showsKeys())
        return;
    const QHash<OrloRatio, QString> names = keysOfPitches(mPlaying.tables());
    for (OrloView* view : mViews) {
        auto* item = new KeyLabelItem(*view->orloWidget(), names);
        view->scene()->addItem(item);
        mItems.append(item);
    }
}
