#pragma once

#include <QString>

#include <chrono>

/// Finds out whether a file is a voice that the engine can take, before the one that plays is closed
/// for it.
///
/// What the file itself does not tell is tried in another process: a voice may loop for ever, crash, or
/// spoil libpd for the ones after it.
class VoicePatchCheck
{
public:
    /// Normally some tens of milliseconds. Later the window is kept painted meanwhile.
    static constexpr std::chrono::milliseconds TRIAL_LIMIT{5000};

    /// [gui]
    explicit VoicePatchCheck(std::chrono::milliseconds trialLimit = TRIAL_LIMIT,
                             QString program = trialProgram());

    /// [gui] Why the file is no voice, as a sentence for the player; empty when it is one. Where no trial can
    /// be made, the file is trusted, and the log tells. What comes for the graphical thread from elsewhere
    /// may be delivered meanwhile; input and the closing of windows wait.
    QString whyNot(const QString& voice) const;

    /// [any] The executable of the trial, beside the program's own.
    static QString trialProgram();

private:
    QString tried(const QString& voice) const;

    std::chrono::milliseconds mTrialLimit;
    QString mProgram;
};
