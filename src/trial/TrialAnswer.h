#pragma once

/// How the trial of a voice ends, as the exit code of its process. Any other code is none of its own: a
/// patch can end the process it runs in.
enum class TrialAnswer {
    Works = 10,
    CannotBeOpened = 11,
    NoVoice = 12, // it names no macros, and nothing sounds
};
