#pragma once

#include "sound/BoundedCall.h"

/// Bounded calls into one sound system, one at a time: while a call that was given up has not come
/// back, no other goes in, since such a system is not made for two.
class SoundSystemGate
{
public:
    /// [gui] As BoundedCall::run. False at once, without calling, while an earlier call is still inside.
    bool run(const std::function<void(BoundedCall::Ticket&)>& call, std::chrono::milliseconds limit);
    /// [gui] As BoundedCall::start. Null, without calling, while an earlier call is still inside.
    std::shared_ptr<BoundedCall::Ticket> start(const std::function<void(BoundedCall::Ticket&)>& call);
    /// [gui] A call was given up, or not waited for, and has not come back.
    bool isStuck() const { return mReturned && !mReturned->load(); }

private:
    std::function<void(BoundedCall::Ticket&)> watched(const std::function<void(BoundedCall::Ticket&)>& call);

    std::shared_ptr<std::atomic<bool>> mReturned; // of the last call
};
