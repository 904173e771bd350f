#pragma once

#include "external/MidiInMessage.h"
#include "keyboard/ControllerMap.h"

#include <QObject>
#include <QPointer>

class ControllerActions;
class ControllerPage;
class KeyLabels;
class MidiPlaying;
class OrloView;
class PlayFromMidiDialog;

/// The window's part in playing from MIDI: the dialog, the keys beside the balls, and what controllers do.
/// [gui]
class PlayFromMidi : public QObject
{
    Q_OBJECT

public:
    /// All of these must outlive it. It is the window's child.
    PlayFromMidi(const QList<OrloView*>& views, MidiPlaying& playing, QWidget* window);

    /// Shows the dialog, which is made once.
    void open();

private:
    void makeDialog();
    void takeMessage(MidiInMessage message);
    void takeMap(const ControllerMap& map);

    MidiPlaying& mPlaying;
    QWidget* const mWindow;
    KeyLabels* const mLabels;
    ControllerActions* const mActions;
    PlayFromMidiDialog* mDialog = nullptr;
    QPointer<ControllerPage> mControllers; // the dialog's
};
