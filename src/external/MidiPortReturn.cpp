#include "external/MidiPortReturn.h"

#include <utility>

namespace {

constexpr qint64 SEARCH_INTERVAL_MS = 2000;
// A server that has died may yet set a thread free; one that spins never comes back.
constexpr qint64 SEARCH_BESIDE_LOST_MS = 10000;

} // namespace

void MidiPortReturn::cancel()
{
    dropSearch();
    mApi = RtMidi::UNSPECIFIED;
}

std::optional<MidiPort::Opened> MidiPortReturn::look(const QString& name,
                                                     const std::function<MidiSender*()>& sender)
{
    if (mSearch)
        return found();
    if (!mSinceSearch.hasExpired(MidiSender::lostThreads() > 0 ? SEARCH_BESIDE_LOST_MS : SEARCH_INTERVAL_MS))
        return std::nullopt;
    if (MidiSender* searcher = sender()) {
        const auto opened = std::make_shared<std::optional<MidiPort::Opened>>();
        const auto open = [opened, wanted = name.toStdString(), api = mApi](MidiPort& port) {
            *opened = port.open(wanted, api);
        };
        mSearch = Search{searcher, searcher->post(open), opened};
        mSinceSearch.start();
    }
    return std::nullopt;
}

/// The result of the search under way; nothing while it runs. A search that takes too long gives up its
/// sender.
std::optional<MidiPort::Opened> MidiPortReturn::found()
{
    if (mSearch->answer->done) {
        const Search search = *std::exchange(mSearch, std::nullopt);
        return search.answer->error ? std::nullopt : *search.opened;
    }
    if (mSinceSearch.hasExpired(MidiSender::CALL_LIMIT.count()))
        mSearch->sender->giveUp();
    if (mSearch->sender->isGivenUp())
        mSearch.reset();
    return std::nullopt;
}
