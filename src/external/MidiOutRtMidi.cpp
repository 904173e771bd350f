#include "external/MidiOutRtMidi.h"

#include "app/LogFilter.h"
#include "external/JackServer.h"
#include "external/MidiNote.h"
#include "sound/AudioLog.h"
#include "sound/ThreadCheck.h"

#include <cstdlib>
#include <optional>

namespace {

constexpr const char* CLIENT_NAME = "RtMidi Output Client";
constexpr int LAST_CHANNEL = MidiOutput::CHANNELS - 1;
constexpr std::chrono::milliseconds WATCH_INTERVAL{100};

QList<int> asList(std::span<const midi::Byte> bytes)
{
    return QList<int>(bytes.begin(), bytes.end());
}

} // namespace

MidiOutRtMidi::MidiOutRtMidi(QObject* parent)
    : MidiOutput(parent)
{
    mWatch.setInterval(WATCH_INTERVAL);
    connect(&mWatch, &QTimer::timeout, this, &MidiOutRtMidi::watch);
}

MidiOutRtMidi::~MidiOutRtMidi()
{
    // A start-up that failed half way does not come through term().
    MidiOutRtMidi::term();
}

MidiPort::Factory MidiOutRtMidi::outputFactory() const
{
    return [](RtMidi::Api api) {
        auto output = std::make_unique<RtMidiOut>(api, CLIENT_NAME);
        // Each time it does not find JACK's server it leaks 16 KiB, so it is not even asked then.
        if (output->getCurrentApi() == RtMidi::UNIX_JACK && !JackServer::isThere())
            output.reset();
        return output;
    };
}

bool MidiOutRtMidi::init()
{
    const auto failure = std::make_shared<std::optional<RtMidiError>>();
    mReturn.cancel();
    mWriter = nullptr;
    mSender.reset();
    const bool answered = sender() && sender()->run([failure](MidiPort& port) {
        try {
            port.check();
        } catch (const RtMidiError& error) {
            *failure = error;
        }
    });
    if (!answered) {
        dropSender();
        qCritical() << "The MIDI system does not answer, there will be no MIDI output.";
        return true;
    }
    if (!*failure)
        return true;
    (*failure)->printMessage();
    std::exit(EXIT_FAILURE);
}

void MidiOutRtMidi::term()
{
    ThreadCheck::stopped();
    mWatch.stop();
    mReturn.cancel();
    if (portOpen && mWriter)
        silence();
    if (mSender && !mSender->run([](MidiPort& port) { port.close(); }))
        qCritical() << "The MIDI system does not answer, it is left as it is.";
    mWriter = nullptr;
    mSender.reset();
    mFormerSender.reset();
}

/// [audio] The last place before the bytes leave: what is no message, such as a note of a key above 127,
/// is not sent. No port is open but one that has a writer.
void MidiOutRtMidi::send(std::span<const midi::Byte> message)
{
    ThreadCheck::audio();
    if (portOpen && mWriter && midi::isWellFormed(message))
        mWriter->write(message);
}

void MidiOutRtMidi::endNotes()
{
    ThreadCheck::gui();
    const auto end = [this] {
        if (mpeMode)
            mpeAllVoicesOff();
        else
            allVoicesOff();
        mpeChannels.freeAll();
    };
    if (portOpen && !onEngine(end))
        closePort(); // nothing can tell the device
}

void MidiOutRtMidi::silence()
{
    if (mpeZone) {
        endZone();
    } else if (mpeMode) {
        mpeAllVoicesOff();
        mpeResetPitchBendRange();
    } else {
        allVoicesOff();
        resetTuningAlteredVoices();
    }
}

// ---------------------------------------------------------------- the channel

void MidiOutRtMidi::setChannel(int newChannel)
{
    ThreadCheck::gui();
    if (onEngine([this, newChannel] { applyChannel(newChannel); }))
        return;
    closePort(); // nothing can tell the device
    applyChannel(newChannel);
}

/// [audio]
void MidiOutRtMidi::applyChannel(int newChannel)
{
    const bool wasZone = leaveZone();
    const bool toMpe = newChannel == MPE;
    if (toMpe != mpeMode.exchange(toMpe))
        mpeChannels.freeAll();
    if (toMpe) {
        if (portOpen && (channel != MPE || wasZone)) {
            allVoicesOff(); // still on the old channel
            mpeApplyPitchBendRange();
        }
        channel = MPE;
        return;
    }
    if (portOpen && channel == MPE && !wasZone) {
        mpeAllVoicesOff();
        mpeResetPitchBendRange();
    }
    if (newChannel >= 0 && newChannel <= LAST_CHANNEL)
        channel = newChannel;
}

// ---------------------------------------------------------------- MIDI Tuning Standard

void MidiOutRtMidi::setKeyFrequency(QList<int> voices, QList<float> frequencies)
{
    ThreadCheck::audio();
    if (mpeMode) {
        mpeSetVoiceFrequency(voices, frequencies);
        return;
    }
    sendTuning("MTS Midi message sent: ", mtsKeys.tune(voices, frequencies, mNoteRange));
}

/// Sends and logs a tuning change. An empty message is skipped.
void MidiOutRtMidi::sendTuning(const char* what, std::span<const midi::Byte> message)
{
    if (message.empty())
        return;
    send(message);
    ORLO_AUDIO_DEBUG << what << asList(message);
}

void MidiOutRtMidi::bendVoices(QList<int> voices, QList<float> frequencies)
{
    ThreadCheck::audio();
    if (!mpeMode) {
        setKeyFrequency(voices, frequencies);
        return;
    }
    const qsizetype count = qMin(voices.size(), frequencies.size());
    for (qsizetype i = 0; i < count; ++i) {
        for (int held = 0; held < CHANNELS; ++held) {
            if (mpeChannels.holds(held, voices.at(i)))
                sendBend(held, midi::noteOfFrequency(frequencies.at(i)));
        }
    }
}

void MidiOutRtMidi::voiceOn(int voice, int velocity)
{
    ThreadCheck::audio();
    if (mpeMode)
        mpeVoiceOn(voice, velocity);
    else if (channel >= 0)
        send(midi::noteOn(channel, mtsKeys.keyOf(voice), midi::velocityByte(velocity)));
}

void MidiOutRtMidi::voiceOff(int voice)
{
    ThreadCheck::audio();
    mNoteRange.noteEnds(voice);
    if (mpeMode)
        mpeVoiceOff(voice);
    else if (channel >= 0)
        send(midi::noteOff(channel, mtsKeys.keyOf(voice)));
}

void MidiOutRtMidi::allVoicesOff()
{
    if (channel >= 0)
        send(midi::allNotesOff(channel));
}

void MidiOutRtMidi::resetTuningAlteredVoices()
{
    sendTuning("Midi message sent to reset MTS to standard for previously altered voices: ", mtsKeys.reset());
}
