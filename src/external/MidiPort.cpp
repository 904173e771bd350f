#include "external/MidiPort.h"

#include "sound/JackEpoch.h"
#include "sound/ThreadCheck.h"

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#endif

#include <algorithm>
#include <utility>

namespace {

constexpr const char* PORT_NAME = "RtMidi Output";
// Of the 16 KiB between RtMidi and JACK's server, which sendMessage spins on while they are full:
// what may be under way until the server has shown that it lives.
constexpr std::size_t MAX_UNANSWERED = 4096;
constexpr std::size_t LENGTH_BYTES = 4; // RtMidi puts them before each message
constexpr int TRIES = 4;

/// How often another thread has run in place of this one so far.
long timesAside()
{
#ifdef Q_OS_LINUX
    rusage usage{};
    if (getrusage(RUSAGE_THREAD, &usage) == 0)
        return usage.ru_nvcsw + usage.ru_nivcsw;
#endif
    return 0;
}

} // namespace

MidiPort::MidiPort(Factory factory)
    : mFactory(std::move(factory))
{
}

MidiPort::~MidiPort() = default;

bool MidiPort::isJack() const
{
    return mOutput && mOutput->getCurrentApi() == RtMidi::UNIX_JACK;
}

/// Of this API, or of any. Null for JACK's without a server.
RtMidiOut* MidiPort::output(RtMidi::Api api)
{
    ThreadCheck::sender();
    if (mOutput && api != RtMidi::UNSPECIFIED && mOutput->getCurrentApi() != api)
        mOutput.reset();
    if (!mOutput) {
        mJackEpoch = JackEpoch::current();
        mOutput = api == RtMidi::UNSPECIFIED ? makeAnyOutput() : mFactory(api);
    }
    return mOutput.get();
}

/// Throws the first error when no API comes up.
std::unique_ptr<RtMidiOut> MidiPort::makeAnyOutput() const
{
    // The default one may throw where a later one works: ALSA without its sequencer, before JACK.
    std::vector<RtMidi::Api> compiled;
    RtMidi::getCompiledApi(compiled);
    std::vector<RtMidi::Api> apis{RtMidi::UNSPECIFIED};
    apis.insert(apis.end(), compiled.begin(), compiled.end());
    std::optional<RtMidiError> firstError;
    for (const RtMidi::Api api : apis) {
        try {
            return mFactory(api);
        } catch (const RtMidiError& error) {
            if (!firstError)
                firstError = error;
        }
    }
    throw *firstError;
}

/// Looks too whether JACK's server has gone since there was one: this new client made the former ones
/// of other parts of the program invalid then.
unsigned int MidiPort::countPorts()
{
    if (mOpen)
        checkServer();
    RtMidiOut* made = output();
    if (made && (mOpen || !isJack()))
        return made->getPortCount();
    bool hasServer = made != nullptr;
    unsigned int count = 0;
    if (made) {
        made->setErrorCallback(
            [](RtMidiError::Type, const std::string&, void* has) { *static_cast<bool*>(has) = false; },
            &hasServer);
        count = made->getPortCount();
        made->setErrorCallback(nullptr);
    }
    if (std::exchange(mHadServer, hasServer) && !hasServer)
        JackEpoch::end(mJackEpoch);
    return count;
}

void MidiPort::releaseIdle()
{
    if (!mOpen && isJack())
        mOutput.reset();
}

void MidiPort::check()
{
    countPorts();
    releaseIdle();
}

std::vector<std::string> MidiPort::names()
{
    std::vector<std::string> found = list();
    releaseIdle();
    return found;
}

std::vector<std::string> MidiPort::list()
{
    std::vector<std::string> found;
    const unsigned int count = countPorts();
    for (unsigned int i = 0; i < count; ++i)
        found.push_back(output()->getPortName(i));
    return found;
}

std::optional<std::size_t> MidiPort::find(const std::string& name)
{
    const std::vector<std::string> all = list();
    const auto found = std::find(all.begin(), all.end(), name);
    if (found == all.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - all.begin());
}

std::optional<MidiPort::Opened> MidiPort::open(std::size_t index)
{
    close();
    const auto number = static_cast<unsigned int>(index);
    if (index >= countPorts()) {
        releaseIdle();
        return std::nullopt;
    }
    output()->openPort(number, PORT_NAME);
    mOpen = true;
    mIndex = index;
    mName = output()->getPortName(number);
    mSinceAnswer = 0;
    // Where it does not show now that the server answers, it would not later.
    mAsksServer = isJack() && serverAnswers();
    return Opened{mName, output()->getCurrentApi()};
}

std::optional<MidiPort::Opened> MidiPort::open(const std::string& name, RtMidi::Api api)
{
    close();
    output(api);
    if (const std::optional<std::size_t> index = find(name))
        return open(*index);
    releaseIdle();
    return std::nullopt;
}

void MidiPort::close()
{
    ThreadCheck::sender();
    if (!mOpen)
        return;
    checkServer();
    mOpen = false;
    mOutput->closePort();
    releaseIdle();
}

void MidiPort::abandon() noexcept
{
    try {
        if (mOpen)
            checkServer();
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
    ThreadCheck::sender();
    const std::size_t size = message.size() + LENGTH_BYTES;
    mSinceAnswer += size;
    if (mAsksServer && mSinceAnswer > MAX_UNANSWERED) {
        checkServer();
        mSinceAnswer = size;
    }
    mOutput->sendMessage(message.data(), message.size());
}

bool MidiPort::isStillThere()
{
    ThreadCheck::sender();
    checkServer();
    if (mOutput->getPortName(static_cast<unsigned int>(mIndex)) == mName)
        return true;
    const std::optional<std::size_t> index = find(mName);
    mIndex = index.value_or(mIndex);
    return index.has_value();
}

/// Throws when JACK's server is dead, and leaves it.
void MidiPort::checkServer()
{
    const bool isFormer = isJack() && mJackEpoch != JackEpoch::current();
    if (!isFormer && (!mAsksServer || serverAnswers()))
        return;
    JackEpoch::end(mJackEpoch);
    mOpen = mAsksServer = false;
    // Not even its end may reach into the client library.
    [[maybe_unused]] const RtMidiOut* left = mOutput.release();
    throw RtMidiError("The MIDI server is gone.", RtMidiError::DRIVER_ERROR);
}

/// Gives the port its name once more, which changes nothing, but asks JACK's server and waits for its
/// answer. A frozen server keeps this thread asleep. RtMidi does not report a dead server: the call
/// returns at once, and no other thread has run meanwhile. A living server may be as quick, but not in
/// every try.
bool MidiPort::serverAnswers()
{
    for (int i = 0; i < TRIES; ++i) {
        const long before = timesAside();
        mOutput->setPortName(PORT_NAME);
        if (timesAside() != before)
            return true;
    }
    return false;
}
