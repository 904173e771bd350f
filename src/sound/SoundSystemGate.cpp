#include "sound/SoundSystemGate.h"

std::function<void(BoundedCall::Ticket&)>
SoundSystemGate::watched(const std::function<void(BoundedCall::Ticket&)>& call)
{
    mReturned = std::make_shared<std::atomic<bool>>(false);
    return [call, returned = mReturned](BoundedCall::Ticket& ticket) {
        call(ticket);
        *returned = true;
    };
}

bool SoundSystemGate::run(const std::function<void(BoundedCall::Ticket&)>& call,
                          std::chrono::milliseconds limit)
{
    return !isStuck() && BoundedCall::run(watched(call), limit);
}

std::shared_ptr<BoundedCall::Ticket>
SoundSystemGate::start(const std::function<void(BoundedCall::Ticket&)>& call)
{
    return isStuck() ? nullptr : BoundedCall::start(watched(call));
}
