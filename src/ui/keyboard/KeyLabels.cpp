#include "ui/keyboard/KeyLabels.h"

#include "keyboard/KeysOfPitch.h"
#include "keyboard/MidiPlaying.h"
#include "ui/keyboard/KeyLabelItem.h"
#include "ui/lattice/OrloView.h"

#include <QGraphicsScene>

#include <utility>

KeyLabels::KeyLabels(const QList<OrloView*>& views, const MidiPlaying& playing, QObject* parent)
    : QObject(parent)
    , mPlaying(playing)
{
    for (OrloView* view : views)
        mViews.append(view);
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
    for (const QPointer<OrloView>& view : std::as_const(mViews)) {
        if (!view)
            continue;
        auto* item = new KeyLabelItem(*view->orloWidget(), names);
        view->scene()->addItem(item);
        mItems.append(item);
    }
}
