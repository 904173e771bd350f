#pragma once

#include "external/MidiOutRtMidi.h"

#include <QList>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>

/// A MIDI system of the test's own behind RtMidi: its ports, and what was sent.
struct MidiSystem
{
    QList<std::string> portNames() const;
    void setPorts(const QList<std::string>& names);
    void add(const std::string& message);
    /// What was sent so far, messages as hexadecimal bytes, and "open 1" or "close", with ", " between
    /// them. Waits for what is on its way.
    std::string take();

    int apisThatFail = 0;
    RtMidi::Api api = RtMidi::UNSPECIFIED; // of each output
    QList<int> apisTried;
    std::atomic<bool> opensFail{false};
    std::atomic<bool> sendsFail{false};
    std::atomic<bool> sendsHang{false};    // until it is false again
    std::atomic<bool> enteredTwice{false}; // by two threads at once
    /// Hears what is sent instead of take(), on the sender's thread.
    std::function<void(std::span<const midi::Byte>)> listener;
    int openPort = -1; // the sender's thread
    std::function<void()> flush;

private:
    mutable std::mutex mMutex;
    QList<std::string> mPorts{"Synth:in", "Other:in", "Other:in", "Third:in"};
    std::string mSent;
};

/// The MIDI output over such a system.
class MidiOutOverDouble : public MidiOutRtMidi
{
public:
    explicit MidiOutOverDouble(int apisThatFail = 0, bool initNow = true);
    ~MidiOutOverDouble() override;
    using MidiOutput::mpeChannels;
    using MidiOutput::mtsKeys;
    using MidiOutput::pitchBendRangeCents;

    const std::shared_ptr<MidiSystem> system = std::make_shared<MidiSystem>();

protected:
    MidiPort::Factory outputFactory() const override;
};

std::string hex(const unsigned char* bytes, size_t size);
/// One message for each channel, such as "Bn 7B 00".
std::string onAllChannels(int status, const char* data);
/// What sets the range of the bend.
std::string bendRange(const char* semitones, const char* cents);
