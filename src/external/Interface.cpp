#include "external/Interface.h"

#include "app/LogFilter.h"
#include "external/MidiBytes.h"
#include "external/MidiOutRtMidi.h"
#include "sound/PdPlayer.h"
#include "sound/ThreadCheck.h"

Interface::Interface(QObject* parent)
    : QObject(parent)
{
    init();
}

bool Interface::init()
{
    midiOutput = new MidiOutRtMidi(this);
    midiOutput->init();
    return true;
}

void Interface::term()
{
    midiOutput->term();
}

void Interface::setRestricted(bool isRestricted)
{
    ThreadCheck::gui();
    if (!restricted.exchange(isRestricted) && isRestricted)
        midiOutput->endNotes(); // behind the last instruction that went out
}

void Interface::receiveInstructions(int parameter, QList<int> voices, QList<float> value1,
                                    QList<float> value2)
{
    ThreadCheck::audio();
    ORLO_AUDIO_DEBUG << "Interface: Received: parameter, voices, value1, value2 " << parameter << voices
                     << value1 << value2;
    if (isOff() || voices.isEmpty())
        return;
    switch (parameter) {
    case PdPlayer::instructionNoteOff: midiOutput->voiceOff(voices.at(0)); break;
    case PdPlayer::instructionNoteOn:
        midiOutput->setKeyFrequency(voices, value1);
        midiOutput->voiceOn(voices.at(0), midi::velocityOf(value2.value(0)));
        break;
    case PdPlayer::instructionBend: midiOutput->bendVoices(voices, value1); break;
    default: break;
    }
}

void Interface::receiveRetuning(QList<int> voices, QList<float> frequencies, QList<float> velocities)
{
    ThreadCheck::audio();
    if (!isOff())
        midiOutput->retuneVoices(voices, frequencies, velocities);
}

bool Interface::isOff() const
{
    if (restricted)
        ORLO_AUDIO_DEBUG << "External Protocol Interface: Output restricted and off.";
    return restricted || !midiOutput->portOpen;
}
