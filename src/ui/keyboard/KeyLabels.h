#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class KeyLabelItem;
class MidiPlaying;
class OrloView;

/// The MIDI keys beside the balls that they play, on both pages, while they are asked for: by the dialog that
/// is open or by the player's switch. [gui]
class KeyLabels : public QObject
{
    Q_OBJECT

public:
    /// Of both it needs `playing` as long as it lives.
    KeyLabels(const QList<OrloView*>& views, const MidiPlaying& playing, QObject* parent);

    void setDialogOpen(bool open);

private:
    void update();

    QList<QPointer<OrloView>> mViews;
    const MidiPlaying& mPlaying;
    bool mDialogOpen = false;
    QList<QPointer<KeyLabelItem>> mItems; // a scene that is built anew takes its own along
};
