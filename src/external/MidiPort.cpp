#include "external/MidiPort.h"

#include <RtMidi.h>

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#endif

#include <algorithm>

namespace {

constexpr const char* PORT_NAME = "RtMidi Output";
// Of the 16 KiB between RtMidi and JACK's server, which sendMessage spins on while they are full:
// what may be under way until the server has shown that it lives.
constexpr std::size_t MOST_UNANSWERED = 4096;
constexpr std::size_t LENGTH_BYTES = 4; // RtMidi puts them before each message
constexpr int TRIES = 3;

/// How often this thread has gone to sleep by itself so far.
long timesAsleep()
{
#ifdef Q_OS_LINUX
    rusage usage{};
    if (getrusage(RUSAGE_THREAD, &usage) == 0)
        return usage.ru_nvcsw;
#endif
    return 0;
}

} // namespace

MidiPort::MidiPort(Factory factory)
    : mFactory(std::move(factory))
{
}

MidiPort::~MidiPort() = default;

RtMidiOut& MidiPort::output()
{
    if (!mOutput)
        mOutput = mFactory();
    return *mOutput;
}

void MidiPort::releaseIdle()
{
    if (!mOpen && mOutput && mOutput->getCurrentApi() == RtMidi::UNIX_JACK)
        mOutput.reset();
}

void MidiPort::check()
{
    output();
    releaseIdle();
}

std::vector<std::string> MidiPort::names()
{
    std::vector<std::string> found;
    const unsigned int count = output().getPortCount();
    for (unsigned int i = 0; i < count; ++i)
        found.push_back(output().getPortName(i));
    releaseIdle();
    return found;
}

std::optional<std::string> MidiPort::open(std::size_t index)
{
    close();
    const auto number = static_cast<unsigned int>(index);
    if (index >= output().getPortCount()) {
        releaseIdle();
        return std::nullopt;
    }
    output().openPort(number, PORT_NAME);
    mOpen = true;
    mIndex = index;
    mName = output().getPortName(number);
    mSinceAnswer = 0;
    // Where it does not show now that the server answers, it would not later.
    mAsksServer = output().getCurrentApi() == RtMidi::UNIX_JACK && serverAnswers();
    return mName;
}

std::optional<std::string> MidiPort::open(const std::string& name)
{
    const std::vector<std::string> all = names();
    const auto found = std::find(all.begin(), all.end(), name);
    if (found == all.end())
        return std::nullopt;
    return open(static_cast<std::size_t>(found - all.begin()));
}

void MidiPort::close()
{
    if (!mOpen)
        return;
    mOpen = false;
    mOutput->closePort();
    releaseIdle();
}

void MidiPort::abandon() noexcept
{
    try {
        for (int channel = 0; mOpen && channel < midi::CHANNELS; ++channel)
            send(midi::allNotesOff(channel));
    } catch (const RtMidiError&) { // nobody is there to hear it
    }
    try {
        close();
    } catch (const RtMidiError&) { // its end closes it too
    }
    mOutput.reset();
}

void MidiPort::send(std::span<const midi::Byte> message)
{
    mSinceAnswer += message.size() + LENGTH_BYTES;
    if (mAsksServer && mSinceAnswer > MOST_UNANSWERED) {
        if (!serverAnswers())
            throw RtMidiError("The MIDI server is gone.", RtMidiError::DRIVER_ERROR);
        mSinceAnswer = message.size() + LENGTH_BYTES;
    }
    mOutput->sendMessage(message.data(), message.size());
}

bool MidiPort::isStillThere()
{
    if (mOutput->getPortName(static_cast<unsigned int>(mIndex)) != mName) {
        const std::vector<std::string> all = names();
        const auto found = std::find(all.begin(), all.end(), mName);
        if (found == all.end())
            return false;
        mIndex = static_cast<std::size_t>(found - all.begin());
    }
    return !mAsksServer || serverAnswers();
}

/// Gives the port its name once more, which changes nothing, but asks JACK's server and waits for its
/// answer. A frozen server keeps this thread asleep; a dead one shows in that it did not sleep. One
/// that lives may answer before it has to.
bool MidiPort::serverAnswers()
{
    for (int i = 0; i < TRIES; ++i) {
        const long before = timesAsleep();
        mOutput->setPortName(PORT_NAME);
        if (timesAsleep() != before)
            return true;
    }
    return false;
}
