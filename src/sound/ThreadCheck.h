#pragma once

#include <source_location>

/// Debug builds check the thread words of docs/architecture.md: the functions here are called at the head
/// of methods with that word, where another thread could come in. On a wrong thread it prints the method and
/// the word, and aborts. Release builds (NDEBUG) compile all of it to nothing.
///
/// A check is lock-free, allocates nothing and makes no system call. Without threads every word holds:
/// a single thread may do what belongs to [audio], [listener] or [sender] as long as no other thread
/// has taken that part, as tests do.
namespace ThreadCheck {

/// While it lives, the calling thread is the listener's or a sender's. Made at the head of the thread.
enum class Role { Listener, Sender };

#ifdef NDEBUG

struct RoleOfThisThread
{
    explicit RoleOfThisThread(Role) {}
};

inline void gui() {}
inline void audio() {}
inline void listener() {}
inline void sender() {}
inline void stopped() {}
inline void engineTaken() {}
inline void engineGivenBack() {}
inline void engineLost() {}
inline void setStreamRuns(bool) {}

#else

class RoleOfThisThread
{
public:
    explicit RoleOfThisThread(Role role);
    ~RoleOfThisThread();
    RoleOfThisThread(const RoleOfThisThread&) = delete;
    RoleOfThisThread& operator=(const RoleOfThisThread&) = delete;

private:
    const Role mRole;
};

using Place = std::source_location;

/// The thread of the QCoreApplication; any thread while there is none.
void gui(Place place = Place::current());
/// The thread that holds the engine. While none does and no stream runs, any thread.
void audio(Place place = Place::current());
/// The listener's thread; any thread while no listener runs.
void listener(Place place = Place::current());
/// A MidiSender's thread; any thread while no sender runs.
void sender(Place place = Place::current());
/// The graphical thread, while no stream runs and no other thread holds the engine.
void stopped(Place place = Place::current());

/// The engine changes hands: this thread runs it from now on, or no longer.
void engineTaken();
void engineGivenBack();
/// The thread that holds the engine never gives it back. The others end the program without it.
void engineLost();
/// From now on only the holder of the engine is [audio].
void setStreamRuns(bool runs);

#endif

} // namespace ThreadCheck
