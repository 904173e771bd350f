#pragma once

#include <atomic>

/// Whether the system has asked the program to end (TerminationSignals).
namespace EndRequest {

/// [any] Set in the signal handler, so also while the event loop stands still: whatever holds up the
/// graphical thread looks here and cuts itself short.
inline std::atomic<bool> isMade{false};

} // namespace EndRequest
