#include "trial/VoiceTrial.h"

#include "sound/NoPdTilde.h"
#include "sound/PdBlockSize.h"

#include <z_libpd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <initializer_list>

namespace {

constexpr int RATE = 44100; // Hz
constexpr int CHANNELS = 2;
// A voice that names its macros is one, and need not be heard: this is enough to meet a loop in it.
constexpr int SHORT_NOTE_MS = 100;
// One that names none may begin slowly.
constexpr int LONG_NOTE_MS = 1000;
constexpr int RELEASE_MS = 50;

void sendList(const char* symbol, std::initializer_list<float> values)
{
    if (libpd_start_message(static_cast<int>(values.size())) != 0)
        return;
    for (const float value : values)
        libpd_add_float(value);
    libpd_finish_list(symbol);
}

void setDsp(bool on)
{
    libpd_start_message(1);
    libpd_add_float(on ? 1.0F : 0.0F);
    libpd_finish_message("pd", "dsp");
}

} // namespace

bool VoiceTrial::sAnswered = false;

void VoiceTrial::listHook(const char* source, int count, _atom* atoms)
{
    if (std::strcmp(source, "output-voice-info") == 0 && count > 1 && libpd_is_symbol(atoms + 1))
        sAnswered = true;
}

TrialAnswer VoiceTrial::run(const char* mainPatch, const char* voiceFolder)
{
    libpd_set_printhook([](const char*) {});
    libpd_set_listhook(&VoiceTrial::listHook);
    libpd_init();
    libpd_init_audio(0, CHANNELS, RATE);
    libpd_add_to_search_path(voiceFolder);
    const std::filesystem::path file(mainPatch);
    void* patch = libpd_openfile(file.filename().c_str(), file.parent_path().c_str());
    if (!patch)
        return TrialAnswer::CannotBeOpened;
    setDsp(true);
    libpd_bind("output-voice-info");
    sendList("master-vol", {0.8F});
    libpd_bang("query-macros");
    // A voice may be silent where its level is low.
    bool sounds = noteSounds(1.0F, 0.5F);
    if (!sounds && !sAnswered)
        sounds = noteSounds(2.0F, 1.0F);
    setDsp(false);
    libpd_closefile(patch);
    return sounds || sAnswered ? TrialAnswer::Works : TrialAnswer::NoVoice;
}

/// Voices count from 1. The messages are those of a note of the instrument.
bool VoiceTrial::noteSounds(float voice, float level)
{
    constexpr float gate = 1.0F;
    constexpr float frequency = 2.0F;
    constexpr float volume = 3.0F;
    constexpr float firstMacro = 4.0F;
    constexpr float lastMacro = 11.0F;
    for (float macro = firstMacro; macro <= lastMacro; ++macro)
        sendList("orlo-in", {macro == firstMacro ? level : 0.5F, macro, voice});
    sendList("orlo-in", {440.0F, frequency, voice});
    sendList("orlo-in", {1.0F, volume, voice});
    sendList("orlo-in", {1.0F, gate, voice});
    const bool sounds = render(sAnswered ? SHORT_NOTE_MS : LONG_NOTE_MS);
    sendList("orlo-in", {0.0F, gate, voice});
    render(RELEASE_MS);
    return sounds;
}

/// Up to the first sound, but no less than the shortest note. True when there was one.
bool VoiceTrial::render(int milliseconds)
{
    bool sounds = false;
    std::array<float, PD_BLOCK_FRAMES * CHANNELS> block{};
    for (int frames = 0; frames < RATE / 1000 * (sounds ? SHORT_NOTE_MS : milliseconds);
         frames += PD_BLOCK_FRAMES) {
        libpd_process_float(1, nullptr, block.data());
        for (const float sample : block)
            sounds = sounds || sample != 0.0F;
    }
    return sounds;
}
