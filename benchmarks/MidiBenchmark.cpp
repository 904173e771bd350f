// What the audio thread pays for MIDI: the time of a call, which hands its bytes to the sender. The
// baseline is RtMidi's own sendMessage of the same bytes, measured in turns.

#include "Baseline.h"
#include "QuietLog.h"

#include "external/MidiNote.h"
#include "external/MidiOutRtMidi.h"
#include "external/MtsTuning.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#ifdef ORLO_HAVE_JACK
#include <jack/jack.h>
#endif

#include <algorithm>
#include <chrono>
#include <iostream>
#include <streambuf>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;
using Messages = std::vector<midi::Bytes>;

constexpr int VOICES = 16;
constexpr int CALLS = 100; // of a batch: what they send fits into either buffer

/// Of what RtMidi and JACK print, each line once: without a JACK server they would repeat six of them at
/// each of some hundred new outputs.
class LinesOnce : public std::streambuf
{
public:
    LinesOnce()
        : mFormer(std::cerr.rdbuf(this))
    {
#ifdef ORLO_HAVE_JACK
        const auto say = [](const char* line) { sayOnce(line); };
        jack_set_error_function(say);
        jack_set_info_function(say);
#endif
    }
    ~LinesOnce() override
    {
        std::cerr.rdbuf(mFormer);
    }
    LinesOnce(const LinesOnce&) = delete;
    LinesOnce& operator=(const LinesOnce&) = delete;

protected:
    int overflow(int character) override
    {
        thread_local std::string line;
        if (character == '\n') {
            sayOnce(line);
            line.clear();
        } else {
            line += static_cast<char>(character);
        }
        return character;
    }

private:
    std::streambuf* mFormer;
};

RtMidi::Api lastCompiledApi()
{
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    return apis.back();
}

/// Without a port. Made anew for each batch, since JACK's buffer fills up.
std::unique_ptr<RtMidiOut> freshOutput()
{
    return std::make_unique<RtMidiOut>(lastCompiledApi(), "bench");
}

/// A port that takes all and is nowhere.
class NoPort : public MidiOutApi
{
public:
    RtMidi::Api getCurrentApi() override { return RtMidi::UNSPECIFIED; }
    void openPort(unsigned int, const std::string&) override { connected_ = true; }
    void openVirtualPort(const std::string&) override {}
    void closePort() override { connected_ = false; }
    void setClientName(const std::string&) override {}
    void setPortName(const std::string&) override {}
    unsigned int getPortCount() override { return 1; }
    std::string getPortName(unsigned int) override { return "none"; }
    void sendMessage(const unsigned char*, size_t) override {}

protected:
    void initialize(const std::string&) override {}
};

class NoOutput : public RtMidiOut
{
public:
    NoOutput()
        : RtMidiOut(lastCompiledApi())
    {
        delete rtapi_;
        rtapi_ = new NoPort;
    }
};

class BenchedOutput : public MidiOutRtMidi
{
public:
    BenchedOutput()
    {
        init();
        selectPort(0);
    }
    ~BenchedOutput() override { term(); }
    using MidiOutRtMidi::waitUntilSent;

protected:
    MidiPort::Factory outputFactory() const override
    {
        return [](RtMidi::Api) { return std::make_unique<NoOutput>(); };
    }
};

template <class Work>
double secondsOf(Work&& work)
{
    const auto start = Clock::now();
    work();
    return Seconds(Clock::now() - start).count();
}

/// `call` sends `messages`. Of each, the fastest batch counts: what else runs only makes it slower.
template <class Call>
void measure(benchmark::State& state, BenchedOutput& output, const Messages& messages, Call&& call)
{
    double own = 1.0;
    double base = 1.0;
    for ([[maybe_unused]] auto _ : state) {
        output.waitUntilSent();
        const double seconds = secondsOf([&] {
            for (int i = 0; i < CALLS; ++i)
                call();
        });
        own = std::min(own, seconds / CALLS);
        state.SetIterationTime(seconds / CALLS);

        const std::unique_ptr<RtMidiOut> plain = freshOutput();
        base = std::min(base, secondsOf([&] {
                                  for (int i = 0; i < CALLS; ++i) {
                                      for (const midi::Bytes& message : messages)
                                          plain->sendMessage(message.data(), message.size());
                                  }
                              }) / CALLS);
    }
    setCosts(state, own, base);
}

midi::Bytes bytes(const midi::ShortMessage& message)
{
    return midi::Bytes(message.begin(), message.end());
}

midi::Bytes tuningChange(const QList<float>& frequencies)
{
    midi::Bytes message;
    mts::beginTuningChange(message, frequencies.size());
    for (int i = 0; i < frequencies.size(); ++i)
        mts::addKeyTuning(message, 32 + i, mts::tuningOfNote(midi::noteOfFrequency(frequencies.at(i))));
    mts::endTuningChange(message);
    return message;
}

void noteOnAndOff(benchmark::State& state, bool mpe, bool zone)
{
    BenchedOutput output;
    zone ? output.setMpeZone() : output.setChannel(mpe ? MidiOutput::MPE : 0);
    const QList<int> voices{0};
    const QList<float> frequencies{550.0F};
    const int key = mpe ? 73 : 32;
    const Messages messages{mpe ? bytes(midi::pitchBend(0, 0x2E, 0x3E)) : tuningChange(frequencies),
                            bytes(midi::noteOn(0, key, 100)), bytes(midi::noteOff(0, key))};
    measure(state, output, messages, [&] {
        output.setKeyFrequency(voices, frequencies);
        output.voiceOn(0, 100);
        output.voiceOff(0);
    });
}
BENCHMARK_CAPTURE(noteOnAndOff, mts, false, false)->UseManualTime()->Iterations(50);
BENCHMARK_CAPTURE(noteOnAndOff, mpe, true, false)->UseManualTime()->Iterations(50);
BENCHMARK_CAPTURE(noteOnAndOff, mpeZone, true, true)->UseManualTime()->Iterations(50);

void bend16Voices(benchmark::State& state, bool mpe)
{
    BenchedOutput output;
    output.setChannel(mpe ? MidiOutput::MPE : 0);
    QList<int> voices;
    QList<float> frequencies;
    for (int i = 0; i < VOICES; ++i) {
        voices.append(i);
        frequencies.append(220.0F * static_cast<float>(9 + i) / 8.0F);
    }
    Messages messages;
    for (int i = 0; mpe && i < VOICES; ++i)
        messages.push_back(bytes(midi::pitchBend(i, 0x40, 0)));
    if (!mpe)
        messages.push_back(tuningChange(frequencies));
    measure(state, output, messages, [&] { output.setKeyFrequency(voices, frequencies); });
}
BENCHMARK_CAPTURE(bend16Voices, mts, false)->UseManualTime()->Iterations(50);
BENCHMARK_CAPTURE(bend16Voices, mpe, true)->UseManualTime()->Iterations(50);

} // namespace

int main(int argc, char** argv)
{
    installQuietLog();
    const QCoreApplication application(argc, argv);
    const LinesOnce linesOnce;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
