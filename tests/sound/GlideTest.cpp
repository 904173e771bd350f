// A glide as it is heard.

#include "support/LogCatcher.h"
#include "support/SoundRig.h"
#include "support/Tone.h"

#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

TEST(Glide, ASelectedNoteGlidesWithoutAClick)
{
    const LogCatcher quiet;
    SoundRig rig(4);
    ASSERT_TRUE(rig.loadVoice(QStringLiteral("Sine.pd")));
    rig.send(OrloNoteEvent(OrloRatio(1, 1)));
    rig.send(OrloNodeSelectToggleEvent(OrloRatio(1, 1)));
    rig.render(300);

    // As fast as a hand moves a slider: the range in 80 steps, one in each block, and back; the
    // fine one beside it.
    std::vector<float> glide;
    for (int i = 0; i <= 160; ++i) {
        const int position = i <= 80 ? 200 + i * 5 / 2 : 400 - (i - 80) * 5 / 2;
        rig.queue(OrloEvent(OrloEvent::GlissOneSet, static_cast<float>(position) / 400.0F));
        rig.queue(OrloEvent(OrloEvent::GlissTwoSet, static_cast<float>(600 - position) / 400.0F));
        const std::vector<float> block = rig.render();
        glide.insert(glide.end(), block.begin(), block.end());
    }
    EXPECT_GT(peak(glide), 0.01F);
    // What cannot be heard under any music.
    EXPECT_LT(clickLevel(glide), -90.0);

    // A jump of the slider over its whole range, by the patch's own smoothing.
    rig.queue(OrloEvent(OrloEvent::GlissOneSet, 1.0F));
    std::vector<float> jump = rig.render(40);
    rig.queue(OrloEvent(OrloEvent::GlissOneSet, 0.0F));
    const std::vector<float> down = rig.render(40);
    jump.insert(jump.end(), down.begin(), down.end());
    EXPECT_LT(clickLevel(jump), -85.0);
}

TEST(Glide, ANoteGoesToANewOneToOneWithoutAClick)
{
    const LogCatcher quiet;
    SoundRig rig(4);
    for (const char* voice : {"Sine.pd", "Organ.pd", "Saw.pd"}) {
        SCOPED_TRACE(voice);
        ASSERT_TRUE(rig.loadVoice(QString::fromLatin1(voice)));
        rig.send(OrloEvent(OrloEvent::BaseFrequencySet, 440.0F));
        rig.send(OrloNoteEvent(OrloRatio(3, 2)));
        rig.render(300);
        rig.queue(OrloEvent(OrloEvent::BaseFrequencySet, 415.3F));
        const std::vector<float> before = rig.render(200);
        rig.player.retuneNotes();
        const std::vector<float> turn = rig.render(40);
        const std::vector<float> after = rig.render(200);
        for (const auto& [sound, pitch] : {std::pair(before, 660.0), {after, 622.95}}) {
            const double heard = tone::pitchNear(sound, pitch, SoundRig::RATE).value_or(1.0);
            EXPECT_NEAR(tone::centsBetween(heard, pitch), 0.0, 0.01);
        }
        EXPECT_LT(clickLevel(turn), std::max(clickLevel(before), clickLevel(after)) + 2.0);
        rig.send(OrloNoteEvent(OrloRatio(3, 2)));
    }
}
