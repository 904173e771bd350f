#pragma once

#include "support/ClickLevel.h"
#include "support/TestHome.h"

#include "app/Settings.h"
#include "model/Orlo.h"
#include "sound/PaAudioOutput.h"
#include "sound/PatchFolder.h"
#include "sound/PdPlayer.h"

#include <functional>
#include <vector>

/// The whole sound engine without a device. Its runtime patch folder is put together from the
/// program's own patches, in a home of its own. While a patch is changed another thread plays the
/// audio callback; otherwise the test renders block by block itself, which makes time exact.
class SoundRig
{
public:
    static constexpr int FRAMES = 256;
    static constexpr double RATE = 44100.0; // Hz

    explicit SoundRig(int voices = 128);
    ~SoundRig();
    SoundRig(const SoundRig&) = delete;
    SoundRig& operator=(const SoundRig&) = delete;

    /// One of the program's voice patches, such as "Sine.pd".
    bool loadVoice(const QString& name);
    bool loadVoiceText(const QByteArray& patch);
    /// A main patch of the test's own, in place of the program's.
    bool loadMainText(const QByteArray& patch);
    /// What the window does with the main patch, under the clock.
    bool load();
    void setVoiceText(const QByteArray& patch) const;
    QFileInfo mainPatch() const;

    void queue(const OrloEvent& event) { player.queueEventGui(&event); }
    /// Queues it and renders one block.
    void send(const OrloEvent& event);
    /// The left channel of so many blocks.
    std::vector<float> render(int blocks = 1);
    /// One block, at the end of what is there.
    void renderInto(std::vector<float>& left, std::vector<float>* right = nullptr);
    /// Renders until the output is silent; false when it is not after ten seconds of sound.
    bool renderUntilSilent();

    /// Another thread renders while `work` runs on this one, faster than real time: a block each
    /// millisecond. It begins and may end early, as a stream may; milliseconds from the start.
    /// Returns the left channel.
    std::vector<float> underClock(const std::function<void()>& work, int beginMs = 0, int endMs = 1 << 30);

    /// The patch's report that a voice, counted from 1, has faded. A patch must be open.
    static void reportVoiceStop(float voice);

    const TestHome home;
    Settings settings;
    Orlo orlo;
    PdPlayer player;
    PaAudioOutput output;

private:
    const PatchFolder mFolder{home.path(QString())};
};

/// A voice of one oscillator at `factor` times the frequency, with this macro list.
QByteArray plainVoice(const QByteArray& factor, const QByteArray& macros = "Level(1)");

float peak(const std::vector<float>& sound);
