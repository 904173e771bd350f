// MIDI Polyphonic Expression: a channel for each voice, its bend, and the range of the bends.

#include "external/MidiOutRtMidi.h"

#include "app/LogFilter.h"
#include "external/MidiNote.h"
#include "external/MpeBend.h"
#include "sound/AudioLog.h"
#include "sound/ThreadCheck.h"

#include <cmath>
#include <utility>

namespace {

constexpr int DEFAULT_BEND_RANGE_CENTS = 200; // what a device starts with

} // namespace

void MidiOutRtMidi::mpeSetVoiceFrequency(QList<int> voices, QList<float> frequencies)
{
    const qsizetype count = qMin(voices.size(), frequencies.size());
    int start = 0; // where the search for a channel begins
    for (qsizetype i = 0; i < count; ++i) {
        const int found = takeChannel(voices.at(i), frequencies.at(i), start, voices);
        if (found != MpeChannels::NONE)
            sendBend(found, midi::noteOfFrequency(frequencies.at(i)));
    }
}

/// The channel that the voice holds or takes now; MpeChannels::NONE when others hold all.
int MidiOutRtMidi::takeChannel(int voice, float frequency, int& start, const QList<int>& voices)
{
    const int found = mpeChannels.find(voice, start);
    if (found == MpeChannels::NONE)
        ORLO_AUDIO_DEBUG << "Cannot add PdPlayer voice" << voices << ". All MPE channels in use!";
    else if (mpeChannels.isFree(found))
        mpeChannels.take(found, voice, mNoteRange.noteOf(voice, frequency));
    return found;
}

/// A note beyond the MIDI range is bent towards as far as the bend goes.
void MidiOutRtMidi::sendBend(int bentChannel, double note)
{
    const auto at = static_cast<size_t>(bentChannel);
    const int key = mpeChannels.channelKey[at];
    const double start = mpeChannels.channelExactNote[at];
    const int range = bendRangeCents();
    const double cents = mpe::bendCents(note, start, key, pitchBendRangeCents);
    const mpe::Bend bend = mpe::bendOfCents(cents, range);
    if (std::abs(bend.factor) > 1.0 && !std::exchange(mBendWarned, true))
        AudioLog::warning("MPE Pitch-bend factor exceeds +-1.");
    send(midi::pitchBend(bentChannel, bend.msb, bend.lsb));
    const double miss = std::abs((note - key) * 100.0 - mpe::centsOfBend(bend, range));
    const bool isHeard = key <= midi::LAST_DATA && std::isfinite(miss);
    mpeChannels.bend(bentChannel, note, isHeard ? miss : 0.0);
    ORLO_AUDIO_DEBUG << "MPE pitch-bend message sent:";
    ORLO_AUDIO_DEBUG << "channel, voice, exact note, range cents, bend cents, factor, message MSB, LSB"
                     << bentChannel << key << start << range << cents << bend.factor << bend.coarse
                     << bend.fine;
}

/// In a zone, the glissandi that follow have their room too.
bool MidiOutRtMidi::bendReaches(int voice, double note) const
{
    const int limit = pitchBendRangeCents;
    const int reach = mpeZone ? bendRangeCents() - limit + mpe::ROUNDING_CENTS : limit;
    for (int i = 0; i < CHANNELS; ++i) {
        if (mpeChannels.holds(i, voice)
            && std::abs(note - mpeChannels.channelKey[static_cast<size_t>(i)]) * 100.0 > reach)
            return false;
    }
    return true;
}

void MidiOutRtMidi::retuneVoices(QList<int> voices, QList<float> frequencies, QList<float> velocities)
{
    ThreadCheck::audio();
    if (!mpeMode) {
        setKeyFrequency(voices, frequencies);
        return;
    }
    const qsizetype count = qMin(voices.size(), qMin(frequencies.size(), velocities.size()));
    for (qsizetype i = 0; i < count; ++i) {
        const int voice = voices.at(i);
        const double note = mNoteRange.noteOf(voice, frequencies.at(i));
        if (!bendReaches(voice, note)) {
            mpeVoiceOff(voice);
            int start = 0;
            sendBend(takeChannel(voice, frequencies.at(i), start, voices),
                     midi::noteOfFrequency(frequencies.at(i)));
            mpeVoiceOn(voice, midi::velocityOf(velocities.at(i)));
            continue;
        }
        for (int held = 0; held < CHANNELS; ++held) {
            if (!mpeChannels.holds(held, voice))
                continue;
            mpeChannels.startFrom(held, note);
            sendBend(held, midi::noteOfFrequency(frequencies.at(i)));
        }
    }
}

void MidiOutRtMidi::mpeVoiceOn(int voice, int velocity)
{
    for (int i = 0; i < CHANNELS; ++i) {
        if (!mpeChannels.holds(i, voice))
            continue;
        const int key = mpeChannels.channelKey[static_cast<size_t>(i)];
        send(midi::noteOn(i, key, midi::velocityByte(velocity)));
        ORLO_AUDIO_DEBUG << "MPE Voice On: Channel, voice: " << i << key;
    }
}

void MidiOutRtMidi::mpeVoiceOff(int voice)
{
    for (int i = 0; i < CHANNELS; ++i) {
        if (!mpeChannels.holds(i, voice))
            continue;
        const int key = mpeChannels.channelKey[static_cast<size_t>(i)];
        send(midi::noteOff(i, key));
        ORLO_AUDIO_DEBUG << "MPE Voice Off: Channel, voice: " << i << key;
        mpeChannels.free(i);
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
    ThreadCheck::gui();
    const auto apply = [this, cents] {
        const int former = bendRangeCents();
        pitchBendRangeCents = cents;
        mBendWarned = false;
        if (portOpen && mpeZone && bendRangeCents() != former)
            changeZoneRange();
        else if (portOpen && mpeMode && !mpeZone)
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
    const midi::BendRange range = midi::bendRangeMessages(cents);
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
    mpeApplyPitchBendRange(DEFAULT_BEND_RANGE_CENTS);
}

void MidiOutRtMidi::mpeResetChannelTuning()
{
    for (int i = 0; i < CHANNELS; ++i)
        mpeSetChannelTuning(i, 0.0F);
}
