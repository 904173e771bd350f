#pragma once

#include "trial/TrialAnswer.h"

struct _atom;

/// Opens a voice as the instrument would and plays a note, in memory. The voice may loop for ever or
/// crash, so it is done in a process of its own. One object.
class VoiceTrial
{
public:
    /// A main patch of few voices, and the folder of orlo_voice.pd.
    TrialAnswer run(const char* mainPatch, const char* voiceFolder);

private:
    static void listHook(const char* source, int count, _atom* atoms);
    bool noteSounds(float voice, float level);
    bool render(int milliseconds);

    static bool sAnswered; // the hook is a plain function
};
