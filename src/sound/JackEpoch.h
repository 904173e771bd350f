#pragma once

#include <atomic>

/// Counts the deaths of the JACK server as far as this process has noticed them. Its clients, those of
/// PortAudio and of RtMidi, share one client library: when the server is gone the first new client
/// makes that library delete all the former ones under their owners. So an owner remembers the epoch
/// in which its client was made, and leaves a client of a former one alone for ever.
namespace JackEpoch {

inline std::atomic<unsigned> theEpoch{0};

/// [any]
inline unsigned current()
{
    return theEpoch;
}

/// [any] The server of this epoch is gone, or is given up. Two that notice the same death end it once.
inline void end(unsigned epoch)
{
    theEpoch.compare_exchange_strong(epoch, epoch + 1);
}

} // namespace JackEpoch
