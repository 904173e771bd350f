#include "support/SoundRig.h"

#include "app/Accessors.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <z_libpd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <thread>

SoundRig::SoundRig(int voices)
{
    settings.mainPatchNumberOfVoices = voices;
    app::setParts({.orlo = &orlo, .player = &player, .settings = &settings, .audioOutput = &output});
    if (!mFolder.install(QCoreApplication::applicationDirPath(), voices))
        qFatal("The program's patches are not beside the tests.");
    if (!player.init())
        qFatal("The engine does not start.");
    player.initAudio(2, static_cast<int>(RATE));
    output.setPlayer(&player);
}

SoundRig::~SoundRig()
{
    if (player.isPatchOpen())
        underClock([this] { player.term(); });
    app::setParts({});
}

bool SoundRig::loadVoice(const QString& name)
{
    const QString voices = PatchFolder::shippedVoices(QCoreApplication::applicationDirPath());
    return mFolder.putVoice(voices + u'/' + name) && load();
}

bool SoundRig::loadVoiceText(const QByteArray& patch)
{
    setVoiceText(patch);
    return load();
}

bool SoundRig::loadMainText(const QByteArray& patch)
{
    home.write(QStringLiteral("patch/orlo_main.pd"), patch);
    return load();
}

bool SoundRig::load()
{
    bool loaded = false;
    underClock([&] { loaded = player.loadPatch(mainPatch()); });
    return loaded;
}

void SoundRig::setVoiceText(const QByteArray& patch) const
{
    home.write(QStringLiteral("patch/orlo_voice.pd"), patch);
}

QFileInfo SoundRig::mainPatch() const
{
    return QFileInfo(mFolder.mainPatch());
}

void SoundRig::send(const OrloEvent& event)
{
    queue(event);
    render();
}

void SoundRig::renderInto(std::vector<float>& left, std::vector<float>* right)
{
    std::array<float, 2 * FRAMES> block;
    block.fill(std::nanf("")); // whatever is not written shows
    output.renderBlock(block.data(), FRAMES);
    for (size_t i = 0; i < block.size(); ++i) {
        if (i % 2 == 0)
            left.push_back(block[i]);
        else if (right)
            right->push_back(block[i]);
    }
}

std::vector<float> SoundRig::render(int blocks)
{
    std::vector<float> left;
    for (int i = 0; i < blocks; ++i)
        renderInto(left);
    return left;
}

bool SoundRig::renderUntilSilent()
{
    constexpr int tenSeconds = static_cast<int>(10 * RATE) / FRAMES;
    // Two blocks in a row below -100 dB, since a filter's tail crosses zero.
    int silent = 0;
    for (int i = 0; i < tenSeconds && silent < 2; ++i)
        silent = peak(render()) < 1e-5F ? silent + 1 : 0;
    return silent == 2;
}

std::vector<float> SoundRig::underClock(const std::function<void()>& work, int beginMs, int endMs)
{
    std::vector<float> left;
    std::atomic<bool> running{true};
    std::thread clock([&] {
        QElapsedTimer timer;
        timer.start();
        while (running) {
            if (timer.elapsed() >= beginMs && timer.elapsed() < endMs)
                renderInto(left);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    work();
    running = false;
    clock.join();
    return left;
}

void SoundRig::reportVoiceStop(float voice)
{
    libpd_start_message(1);
    libpd_add_float(voice);
    libpd_finish_list("voice-stop");
}

QByteArray plainVoice(const QByteArray& factor, const QByteArray& macros)
{
    QByteArray patch =
        "#N canvas 0 0 400 300 12;\n#X obj 20 20 inlet;\n#X obj 120 20 inlet~;\n"
        "#X obj 20 50 route gate query;\n#X obj 120 60 *~ FACTOR;\n#X obj 120 90 osc~;\n"
        "#X msg 20 90 \\$1 5;\n#X obj 20 120 line~;\n#X obj 120 150 *~;\n#X obj 120 180 *~ 0.1;\n"
        "#X obj 20 220 outlet~;\n#X obj 120 220 outlet~;\n#X obj 220 220 outlet;\n"
        "#X msg 220 90 macros MACROS;\n"
        "#X connect 0 0 2 0;\n#X connect 1 0 3 0;\n#X connect 2 0 5 0;\n#X connect 2 1 12 0;\n"
        "#X connect 3 0 4 0;\n#X connect 4 0 7 0;\n#X connect 5 0 6 0;\n#X connect 6 0 7 1;\n"
        "#X connect 7 0 8 0;\n#X connect 8 0 9 0;\n#X connect 8 0 10 0;\n#X connect 12 0 11 0;\n";
    return patch.replace("FACTOR", factor).replace("MACROS", macros);
}

float peak(const std::vector<float>& sound)
{
    float highest = 0.0F;
    for (const float sample : sound)
        highest = std::isfinite(sample) ? std::max(highest, std::abs(sample)) : INFINITY;
    return highest;
}
