#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

/// Runs calls into a sound system on a thread of their own and waits for them only so long. A
/// server that was killed or frozen keeps some calls waiting for minutes, and the graphical thread
/// must not wait with them.
namespace BoundedCall {

/// How a call stands that may be given up.
class Ticket
{
public:
    /// [any] For the call, at its end. False when it was given up meanwhile: clean up what was made.
    bool finish();
    /// [any] For the side that waits. False when the call has finished after all.
    bool giveUp();
    bool isFinished() const { return mState == State::Finished; }

private:
    enum class State { Running, Finished, GivenUp };
    std::atomic<State> mState{State::Running};
};

/// [any] Effect: calls `call` on another thread. True when it ended within `limit`; false leaves it to
/// itself, so it must own all that it touches; one that opens something ends with Ticket::finish.
bool run(const std::function<void(Ticket&)>& call, std::chrono::milliseconds limit);

/// [any] The same without waiting.
std::shared_ptr<Ticket> start(const std::function<void(Ticket&)>& call);

} // namespace BoundedCall
