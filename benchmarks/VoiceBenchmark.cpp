// What the voices cost, beside what others need for the same: a plain table bank written here and
// FluidSynth. Everything that is compared takes turns in one run, block by block, and medians are
// compared, so that a busy machine slows all alike. A table on standard output.

#include "QuietLog.h"
#include "support/SoundRig.h"

#include "sound/FloatMode.h"
#include "sound/NumericLocale.h"
#include "sound/OrloNoteEvent.h"

#include <QCoreApplication>
#include <QDir>

#include <z_libpd.h>

#ifdef ORLO_HAVE_FLUIDSYNTH
#include <fluidsynth.h>
#endif

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <numbers>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int FRAMES = SoundRig::FRAMES;
constexpr double BLOCK_US = 1e6 * FRAMES / SoundRig::RATE;
constexpr int VOICES = 128;
constexpr int WARM_UP = 60;   // blocks
constexpr int MEASURED = 400; // blocks
constexpr int OPENINGS = 9;

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double microseconds(const std::function<void()>& work)
{
    const Clock::time_point begin = Clock::now();
    work();
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

/// Of the processor only: an opening is long enough to be interrupted.
double processorMicroseconds(const std::function<void()>& work)
{
    const std::clock_t begin = std::clock();
    work();
    return 1e6 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// Microseconds of each, turn and turn about.
std::vector<double> compare(const std::vector<std::function<void()>>& ways, int rounds = MEASURED)
{
    std::vector<std::vector<double>> times(ways.size());
    for (int round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < ways.size(); ++i)
            times[i].push_back(microseconds(ways[i]));
    }
    std::vector<double> medians;
    for (const auto& each : times)
        medians.push_back(median(each));
    return medians;
}

// ---------------------------------------------------------------- the yardsticks

/// A value on its way to another, as everything is that must not click.
struct Ramp
{
    float value;
    float step = 0.0F;

    float at(size_t frame) const { return value + step * static_cast<float>(frame); }
};

/// The sine as a table, read between its points.
class TableBank
{
public:
    TableBank()
    {
        for (size_t i = 0; i < mTable.size(); ++i)
            mTable[i] = static_cast<float>(std::sin(2.0 * std::numbers::pi * static_cast<double>(i) / TABLE));
        for (size_t i = 0; i < mVoices.size(); ++i) {
            const double frequency = 440.0 * static_cast<double>(23 + i) / 92.0;
            mVoices[i].frequency = static_cast<std::uint32_t>(frequency / SoundRig::RATE * 4294967296.0);
        }
    }

    /// A phase and a gain for each voice, summed to one side. Nothing may change without a click.
    void renderBare(float* output)
    {
        Side sum{};
        for (Voice& voice : mVoices)
            addBare(voice, sum);
        for (size_t i = 0; i < FRAMES; ++i)
            output[2 * i] = output[2 * i + 1] = sum[i];
    }
    /// With an envelope, and a gain for each side.
    void renderEnvelopes(float* output) { renderSides(output, &TableBank::addEnvelope); }
    /// Does what the Sine voice does: the frequency may glide too, the envelope is squared, and the
    /// gains of either side are ramped.
    void renderLikeSine(float* output) { renderSides(output, &TableBank::addLikeSine); }

private:
    static constexpr unsigned BITS = 11;
    static constexpr size_t TABLE = 1U << BITS;
    using Side = std::array<float, FRAMES>;
    struct Voice
    {
        std::uint32_t phase = 0;     // 2^32 is a turn
        std::uint32_t frequency = 0; // of that, a frame
        std::uint32_t glide = 0;     // of that, a frame
        Ramp envelope{1.0F};
        Ramp left{0.12F};
        Ramp right{0.12F};
    };

    float read(std::uint32_t phase) const
    {
        constexpr unsigned rest = 32 - BITS;
        const size_t index = phase >> rest;
        const auto between = static_cast<float>(static_cast<int>(phase & ((1U << rest) - 1U)));
        return mTable[index] + between * (1.0F / (1U << rest)) * (mTable[index + 1] - mTable[index]);
    }

    void addBare(Voice& kept, Side& sum) const
    {
        Voice voice = kept; // in registers
        for (size_t i = 0; i < FRAMES; ++i) {
            sum[i] += read(voice.phase) * voice.left.value;
            voice.phase += voice.frequency;
        }
        kept = voice;
    }

    void addEnvelope(Voice& kept, Side& left, Side& right) const
    {
        Voice voice = kept;
        for (size_t i = 0; i < FRAMES; ++i) {
            const float sample = read(voice.phase) * voice.envelope.at(i);
            voice.phase += voice.frequency;
            left[i] += sample * voice.left.value;
            right[i] += sample * voice.right.value;
        }
        kept = voice;
    }

    void addLikeSine(Voice& kept, Side& left, Side& right) const
    {
        Voice voice = kept;
        for (size_t i = 0; i < FRAMES; ++i) {
            const float envelope = voice.envelope.at(i);
            const float sample = read(voice.phase) * envelope * envelope;
            voice.phase += voice.frequency;
            voice.frequency += voice.glide;
            left[i] += sample * voice.left.at(i);
            right[i] += sample * voice.right.at(i);
        }
        kept = voice;
    }

    void renderSides(float* output, void (TableBank::*add)(Voice&, Side&, Side&) const)
    {
        Side left{};
        Side right{};
        for (Voice& voice : mVoices)
            (this->*add)(voice, left, right);
        for (size_t i = 0; i < FRAMES; ++i) {
            output[2 * i] = left[i];
            output[2 * i + 1] = right[i];
        }
    }

    std::array<float, TABLE + 1> mTable;
    std::array<Voice, VOICES> mVoices;
};

#ifdef ORLO_HAVE_FLUIDSYNTH
/// As many voices of a held, looped preset, without reverberation and chorus.
class Fluid
{
public:
    Fluid()
        : mSettings(new_fluid_settings())
    {
        fluid_settings_setnum(mSettings, "synth.sample-rate", SoundRig::RATE);
        fluid_settings_setint(mSettings, "synth.reverb.active", 0);
        fluid_settings_setint(mSettings, "synth.chorus.active", 0);
        fluid_settings_setint(mSettings, "synth.polyphony", 2 * VOICES);
        mSynth = new_fluid_synth(mSettings);
        if (fluid_synth_sfload(mSynth, ORLO_SOUND_FONT, 1) < 0)
            return;
        constexpr int organ = 19;
        for (int channel = 0; channel < 16; ++channel) {
            if (channel != 9)
                fluid_synth_program_change(mSynth, channel, organ);
        }
        for (int key = 36; key < 96; ++key) {
            for (int channel = 0; channel < 16; ++channel) {
                if (channel != 9 && voices() < VOICES)
                    fluid_synth_noteon(mSynth, channel, key, 100);
            }
        }
    }
    ~Fluid()
    {
        delete_fluid_synth(mSynth);
        delete_fluid_settings(mSettings);
    }
    Fluid(const Fluid&) = delete;
    Fluid& operator=(const Fluid&) = delete;

    int voices() const { return fluid_synth_get_active_voice_count(mSynth); }
    void render(float* output) { fluid_synth_write_float(mSynth, FRAMES, output, 0, 2, output, 1, 2); }

private:
    fluid_settings_t* mSettings;
    fluid_synth_t* mSynth = nullptr;
};
#endif

// ---------------------------------------------------------------- the tables

QStringList voiceFiles()
{
    const QDir directory(QCoreApplication::applicationDirPath() + QStringLiteral("/patches"));
    return directory.entryList({QStringLiteral("*.pd")}, QDir::Files, QDir::Name);
}

void play(SoundRig& rig, int from, int to)
{
    for (int i = from; i < to; ++i)
        rig.queue(OrloNoteEvent(OrloRatio(static_cast<unsigned long long>(23 + i), 92)));
    rig.render(WARM_UP);
}

void printCosts()
{
    constexpr std::array COUNTS{0, 1, 8, 32, 64, VOICES};
    std::printf("Microseconds for each block of %d frames, which lasts %.0f, with so many notes sounding\n\n"
                "%-10s",
                FRAMES, BLOCK_US, "");
    for (const int count : COUNTS)
        std::printf("%8d", count);
    std::printf("   128 in per cent of the time\n");
    std::array<float, 2 * FRAMES> output{};
    for (const QString& file : voiceFiles()) {
        SoundRig rig;
        if (!rig.loadVoice(file))
            qFatal("%s cannot be loaded.", qPrintable(file));
        std::printf("%-10s", qPrintable(file.chopped(3)));
        int playing = 0;
        double cost = 0.0;
        for (const int count : COUNTS) {
            play(rig, playing, count);
            playing = count;
            cost = compare({[&] { rig.output.renderBlock(output.data(), FRAMES); }})[0];
            std::printf("%8.1f", cost);
        }
        std::printf("%10.1f\n", 100.0 * cost / BLOCK_US);
    }
}

void printComparison()
{
    SoundRig rig;
    if (!rig.loadVoice(QStringLiteral("Sine.pd")))
        qFatal("Sine.pd cannot be loaded.");
    std::array<float, 2 * FRAMES> output{};
    const auto engine = [&] { rig.output.renderBlock(output.data(), FRAMES); };
    rig.render(WARM_UP);
    const double idle = compare({engine})[0];
    play(rig, 0, VOICES);

    TableBank bank;
    std::vector<std::function<void()>> ways{engine, [&] { bank.renderLikeSine(output.data()); },
                                            [&] { bank.renderEnvelopes(output.data()); },
                                            [&] { bank.renderBare(output.data()); }};
#ifdef ORLO_HAVE_FLUIDSYNTH
    Fluid fluid;
    std::array<float, 2 * FRAMES> fluidOutput{};
    ways.push_back([&] { fluid.render(fluidOutput.data()); });
#endif
    compare(ways, WARM_UP);
    const std::vector<double> costs = compare(ways);
    std::printf("\n128 notes, in turns\n\n%-40s%8.1f\n", "Sine", costs[0]);
    const auto print = [&](const char* what, double cost) {
        std::printf("%-40s%8.1f, Sine is %.2f times that\n", what, cost, costs[0] / cost);
    };
    print("Table bank, all that Sine does", costs[1]);
    print("Table bank, envelopes and sides", costs[2]);
    print("Table bank, bare", costs[3]);
#ifdef ORLO_HAVE_FLUIDSYNTH
    print(qPrintable(QStringLiteral("FluidSynth, %1 voices").arg(fluid.voices())), costs[4]);
#endif
    std::printf("%-40s%8.1f, %.1f per cent of Sine\n", "Idle", idle, 100.0 * idle / costs[0]);
}

/// Milliseconds of opening one main patch and switching sound on, closing not counted.
double open(const QByteArray& name, const QByteArray& folder)
{
    const NumericLocale numbersWithPoint;
    void* patch = nullptr;
    const auto dsp = [](float on) {
        libpd_start_message(1);
        libpd_add_float(on);
        libpd_finish_message("pd", "dsp");
    };
    const double time = processorMicroseconds([&] {
        patch = libpd_openfile(name.constData(), folder.constData());
        dsp(1.0F);
    });
    dsp(0.0F);
    libpd_closefile(patch);
    return time / 1000.0;
}

void printOpenings()
{
    std::printf("\nOpening the main patch, milliseconds of the processor, in turns\n\n%-10s%10s%10s%10s\n",
                "", "4", "128", "times");
    const SoundRig rig(4); // for its folder
    const QDir patches(QCoreApplication::applicationDirPath() + QStringLiteral("/patches"));
    for (const char* main : {"orlo_main_4voice.pd", "orlo_main_128voice.pd"})
        QFile::copy(patches.filePath(QStringLiteral("shell/") + QLatin1StringView(main)),
                    rig.home.path(QStringLiteral("patch/") + QLatin1StringView(main)));
    const QByteArray folder = QFile::encodeName(rig.mainPatch().absolutePath());
    for (const QString& file : voiceFiles()) {
        QFile voice(patches.filePath(file));
        if (!voice.open(QIODevice::ReadOnly))
            qFatal("%s cannot be read.", qPrintable(file));
        rig.setVoiceText(voice.readAll());
        std::vector<double> four;
        std::vector<double> all;
        for (int i = 0; i < OPENINGS; ++i) {
            open("orlo_main_4voice.pd", folder); // tidies the heap after the many of the last round
            four.push_back(open("orlo_main_4voice.pd", folder));
            all.push_back(open("orlo_main_128voice.pd", folder));
        }
        std::printf("%-10s%10.2f%10.2f%10.1f\n", qPrintable(file.chopped(3)), median(four), median(all),
                    median(all) / median(four));
    }
}

} // namespace

int main(int argc, char** argv)
{
    installQuietLog();
    QCoreApplication application(argc, argv);
    setFlushToZero(); // for the yardsticks too
    printCosts();
    printComparison();
    printOpenings();
    return 0;
}
