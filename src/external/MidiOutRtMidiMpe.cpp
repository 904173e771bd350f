// The half of the output that gives each voice a MIDI channel of its own.

#include "external/MidiOutRtMidi.h"

#include "app/LogFilter.h"
#include "sound/AudioLog.h"

#include <cmath>
#include <utility>

namespace {
constexpr int LAST_CHANNEL = MidiOutput::CHANNELS - 1;
constexpr int NO_CHANNEL = -1;
constexpr int DEFAULT_RANGE_CENTS = 200;
} // namespace

void MidiOutRtMidi::mpeSetVoiceFrequency(QList<int> voices, QList<float> frequencies)
{
    const qsizetype count = qMin(voices.size(), frequencies.size());
    int start = 0; // where the search for a channel begins
    for (qsizetype i = 0; i < count; ++i) {
        const int found = takeChannel(voices.at(i), frequencies.at(i), start, voices);
        if (found != NO_CHANNEL)
            sendBend(found, frequencies.at(i));
    }
}

/// The voice's channel, or the first free one, whichever comes first: a lower channel that fell
/// free wins over the one that the voice has, and the voice then holds both.
int MidiOutRtMidi::takeChannel(int voice, float frequency, int& start, const QList<int>& voices)
{
    for (int i = start; i < CHANNELS; ++i) {
        const auto at = static_cast<size_t>(i);
        if (!channelActive[at]) {
            const double note = noteInRange(voice, frequency);
            channelVoice[at] = voice;
            channelActive[at] = true;
            channelKey[at] = static_cast<int>(std::round(note));
            channelExactNote[at] = note;
            return i;
        }
        if (channelVoice[at] == voice)
            return i;
    }
    ORLO_AUDIO_DEBUG << "Cannot add PdPlayer voice" << voices << ". All MPE channels in use!";
    start = LAST_CHANNEL; // the others of this call need not look at the rest
    return NO_CHANNEL;
}

void MidiOutRtMidi::sendBend(int bentChannel, float frequency)
{
    const auto at = static_cast<size_t>(bentChannel);
    const int range = pitchBendRangeCents;
    const double cents =
        midi::bendCents(midi::noteOfFrequency(frequency), channelExactNote[at], channelKey[at], range);
    const midi::Bend bend = midi::bendOfCents(cents, range);
    if (std::abs(bend.factor) > 1.0 && !std::exchange(mBendWarned, true))
        AudioLog::warning("MPE Pitch-bend factor exceeds +-1.");
    send(midi::pitchBend(bentChannel, bend.msb, bend.lsb));
    ORLO_AUDIO_DEBUG << "MPE pitch-bend message sent:";
    ORLO_AUDIO_DEBUG << "channel, voice, exact note, range cents, bend cents, factor, message MSB, LSB"
                     << bentChannel << channelKey[at] << channelExactNote[at] << range << cents << bend.factor
                     << bend.coarse << bend.fine;
}

void MidiOutRtMidi::mpeVoiceOn(int voice, int velocity)
{
    for (int i = 0; i < CHANNELS; ++i) {
        const auto at = static_cast<size_t>(i);
        if (!channelActive[at] || channelVoice[at] != voice)
            continue;
        send(midi::noteOn(i, channelKey[at], midi::velocityByte(velocity)));
        ORLO_AUDIO_DEBUG << "MPE Voice On: Channel, voice: " << i << channelKey[at];
    }
}

void MidiOutRtMidi::mpeVoiceOff(int voice)
{
    for (int i = 0; i < CHANNELS; ++i) {
        const auto at = static_cast<size_t>(i);
        if (!channelActive[at] || channelVoice[at] != voice)
            continue;
        send(midi::noteOff(i, channelKey[at]));
        ORLO_AUDIO_DEBUG << "MPE Voice Off: Channel, voice: " << i << channelKey[at];
        channelActive[at] = false;
    }
}

void MidiOutRtMidi::mpeAllVoicesOff()
{
    for (int i = 0; i < CHANNELS; ++i)
        send(midi::allNotesOff(i));
    mpeResetPitchBendAll();
}

void MidiOutRtMidi::mpeResetPitchBend(int centredChannel)
{
    send(midi::pitchBendCentre(centredChannel));
    ORLO_AUDIO_DEBUG << "MPE Pitch-bend reset for channel " << centredChannel;
}

void MidiOutRtMidi::mpeResetPitchBendAll()
{
    for (int i = 0; i < CHANNELS; ++i)
        mpeResetPitchBend(i);
}

void MidiOutRtMidi::mpeSetPitchBendRange(int cents)
{
    const auto apply = [this, cents] {
        pitchBendRangeCents = cents;
        mBendWarned = false;
        if (portOpen && mpeMode)
            mpeApplyPitchBendRange();
    };
    if (onEngine(apply))
        return;
    closePort(); // nothing can tell the device
    pitchBendRangeCents = cents;
}

void MidiOutRtMidi::mpeApplyPitchBendRange()
{
    mpeApplyPitchBendRange(pitchBendRangeCents);
}

void MidiOutRtMidi::mpeApplyPitchBendRange(int cents)
{
    const midi::BendRange range = midi::bendRange(cents);
    for (size_t i = 0; i < range.messages.size(); ++i) {
        const midi::ShortMessage& message = range.messages[i];
        send(message);
        ORLO_AUDIO_DEBUG.noquote() << QStringLiteral("Midi RPN message %1: ").arg(i + 1)
                                   << QList<int>(message.begin(), message.end());
    }
    ORLO_AUDIO_DEBUG << "Midi RPN messages sent: Pitch bend range set to: semitones, cents "
                     << range.semitones << range.cents;
}

void MidiOutRtMidi::mpeResetPitchBendRange()
{
    mpeApplyPitchBendRange(DEFAULT_RANGE_CENTS);
}

void MidiOutRtMidi::mpeResetChannelTuning()
{
    for (int i = 0; i < CHANNELS; ++i)
        mpeSetChannelTuning(i, 0.0F);
}
