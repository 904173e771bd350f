#pragma once

namespace JackServer {

/// [sender] Whether a client of JACK finds a server. True where JACK's library is not part of this process.
/// Waits for a server that stands still.
bool isThere();

} // namespace JackServer
