#include "trial/VoiceTrial.h"

#include <cstdlib>
#include <sys/resource.h>
#include <unistd.h>

namespace {

// If the instrument itself should end before it has ended this.
constexpr unsigned TRIAL_LIMIT_S = 20;

} // namespace

/// Arguments: a main patch, and the folder of the voice. Exits with a TrialAnswer.
int main(int argc, char** argv)
{
    if (argc != 3)
        return 1;
    alarm(TRIAL_LIMIT_S);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none); // a voice that crashes leaves no file
    // Ends without destructors, which a broken voice could disturb.
    std::_Exit(static_cast<int>(VoiceTrial().run(argv[1], argv[2])));
}
