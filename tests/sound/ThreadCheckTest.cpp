#include "sound/ThreadCheck.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

namespace {

using Step = std::function<void()>;

void elsewhere(const Step& step)
{
    std::thread(step).join();
}

/// While another thread has done `begin` and lives on.
void beside(const Step& begin, const Step& step)
{
    std::thread([&] {
        begin();
        elsewhere(step);
    }).join();
}

const Step audio = [] { ThreadCheck::audio(); };
const Step gui = [] { ThreadCheck::gui(); };
const Step listener = [] { ThreadCheck::listener(); };
const Step sender = [] { ThreadCheck::sender(); };
const Step stopped = [] { ThreadCheck::stopped(); };
const Step take = [] { ThreadCheck::engineTaken(); };
const Step takeAndGiveBack = [] {
    ThreadCheck::engineTaken();
    ThreadCheck::engineGivenBack();
};
const Step lose = [] {
    ThreadCheck::engineTaken();
    ThreadCheck::engineLost();
};
const Step stream = [] { ThreadCheck::setStreamRuns(true); };

struct Row
{
    const char* word;
    Step call;
};

} // namespace

TEST(ThreadCheck, AWrongThreadEndsTheProgramWithTheWordOfTheMethod)
{
#ifdef NDEBUG
    GTEST_SKIP() << "Release builds check nothing.";
#endif
    using ThreadCheck::Role;
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto listening = [] {
        const ThreadCheck::RoleOfThisThread role(Role::Listener);
        elsewhere(listener);
    };
    const auto sending = [] {
        const ThreadCheck::RoleOfThisThread role(Role::Sender);
        elsewhere(sender);
    };
    const Row wrong[] = {
        {"gui", [] { elsewhere(gui); }},
        {"audio", [] { beside(take, audio); }},
        {"audio", [] { stream(), audio(); }},
        {"listener", listening},
        {"sender", sending},
        {"stopped", [] { elsewhere(stopped); }},
        {"stopped", [] { stream(), stopped(); }},
        {"stopped", [] { beside(take, [] {}), stopped(); }},
    };
    for (const auto& [word, call] : wrong)
        EXPECT_DEATH(call(), std::string("is \\[") + word + "\\] and was called") << word;

    const Step right[] = {
        gui,
        [] { elsewhere(audio); },
        [] { stream(), elsewhere([] { take(), audio(), ThreadCheck::engineGivenBack(); }); },
        [] { beside(takeAndGiveBack, audio); },
        [] { beside(lose, audio); }, // the last steps of a program whose sound is over
        [] { elsewhere(listener), elsewhere(sender); },
        [] { ThreadCheck::setStreamRuns(false), stopped(); },
    };
    for (const Step& call : right)
        EXPECT_EXIT((call(), std::_Exit(0)), ::testing::ExitedWithCode(0), "");
}
