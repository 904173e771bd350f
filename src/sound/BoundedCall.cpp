#include "sound/BoundedCall.h"

#include <future>
#include <thread>

namespace BoundedCall {

bool Ticket::finish()
{
    State expected = State::Running;
    return mState.compare_exchange_strong(expected, State::Finished);
}

bool Ticket::giveUp()
{
    State expected = State::Running;
    return mState.compare_exchange_strong(expected, State::GivenUp);
}

bool run(const std::function<void(Ticket&)>& call, std::chrono::milliseconds limit)
{
    const auto ticket = std::make_shared<Ticket>();
    std::promise<void> ended;
    std::future<void> end = ended.get_future();
    std::thread([call, ticket, promise = std::move(ended)]() mutable {
        call(*ticket);
        promise.set_value();
    }).detach();
    if (end.wait_for(limit) == std::future_status::ready)
        return true;
    if (ticket->giveUp())
        return false;
    end.wait(); // it finished at the last moment
    return true;
}

std::shared_ptr<Ticket> start(const std::function<void(Ticket&)>& call)
{
    auto ticket = std::make_shared<Ticket>();
    std::thread([call, ticket] { call(*ticket); }).detach();
    return ticket;
}

} // namespace BoundedCall
