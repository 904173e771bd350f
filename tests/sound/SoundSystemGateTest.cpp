#include "sound/SoundSystemGate.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

using namespace std::chrono_literals;

TEST(SoundSystemGate, NothingGoesInBeforeACallThatWasGivenUpIsBack)
{
    SoundSystemGate gate;
    const auto thaw = std::make_shared<std::promise<void>>();
    const std::shared_future<void> thawed = thaw->get_future();
    std::atomic<int> calls{0};
    const auto count = [&calls](BoundedCall::Ticket&) { ++calls; };

    EXPECT_TRUE(gate.run(count, 5s));
    EXPECT_FALSE(gate.run([thawed](BoundedCall::Ticket&) { thawed.wait(); }, 20ms));
    EXPECT_TRUE(gate.isStuck());
    EXPECT_FALSE(gate.run(count, 5s));
    EXPECT_FALSE(gate.start(count));
    EXPECT_EQ(calls, 1);

    thaw->set_value();
    const auto last = std::chrono::steady_clock::now() + 5s;
    while (gate.isStuck() && std::chrono::steady_clock::now() < last)
        std::this_thread::sleep_for(1ms);
    EXPECT_FALSE(gate.isStuck());
    EXPECT_TRUE(gate.run(count, 5s));
    EXPECT_EQ(calls, 2);
}
