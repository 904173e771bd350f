#include "sound/CallGate.h"

bool CallGate::run(const std::function<void(BoundedCall::Ticket&)>& call, std::chrono::milliseconds limit)
{
    if (isStuck())
        return false;
    const auto returned = std::make_shared<std::atomic<bool>>(false);
    const bool inTime = BoundedCall::run(
        [call, returned](BoundedCall::Ticket& ticket) {
            call(ticket);
            *returned = true;
        },
        limit);
    mReturned = inTime ? nullptr : returned;
    return inTime;
}
