#pragma once

#include "external/MidiSender.h"

#include <QElapsedTimer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

/// Looks for a MIDI port that is missing, every two seconds, and opens it when one of its name is there
/// again. It never waits: a frozen server must not freeze the window.
class MidiPortReturn
{
public:
    /// [gui] The next search comes after a pause: the port was lost just now, or was opened.
    void pause() { mSinceSearch.start(); }
    /// [gui] The MIDI system in which the port was open; only that one is searched.
    void setApi(RtMidi::Api api) { mApi = api; }
    /// [gui] A search is under way: the sender may open a port at any moment.
    bool isSearching() const { return mSearch.has_value(); }
    /// [gui] What the search under way finds is of no use any more.
    void dropSearch() { mSearch.reset(); }
    /// [gui] The port was closed by choice: it is neither searched for nor tied to a MIDI system.
    void cancel();

    /// [gui] One look, to be repeated. The port that has been opened, if any. `sender` gives the sender to
    /// search with, or null; one that does not answer a search in time is given up.
    std::optional<MidiPort::Opened> look(const QString& name, const std::function<MidiSender*()>& sender);

private:
    /// `opened` belongs to the sender until it has answered.
    struct Search
    {
        MidiSender* sender;
        std::shared_ptr<MidiSender::Answer> answer;
        std::shared_ptr<std::optional<MidiPort::Opened>> opened;
    };
    std::optional<MidiPort::Opened> found();

    std::optional<Search> mSearch;
    RtMidi::Api mApi = RtMidi::UNSPECIFIED;
    QElapsedTimer mSinceSearch;
};
