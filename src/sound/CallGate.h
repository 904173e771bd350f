#pragma once

#include "sound/BoundedCall.h"

#include <memory>

/// Bounded calls into one sound system, one at a time: while a call that was given up has not come
/// back, no other goes in, since such a system is not made for two. Graphical thread.
class CallGate
{
public:
    /// As BoundedCall::run. False at once, without calling, while an earlier call is still inside.
    bool run(const std::function<void(BoundedCall::Ticket&)>& call, std::chrono::milliseconds limit);
    /// A call was given up and has not come back.
    bool isStuck() const { return mReturned && !mReturned->load(); }

private:
    std::shared_ptr<std::atomic<bool>> mReturned; // of the call that was given up last
};
