#include "app/DebugLog.h"

namespace app {

std::atomic<bool> debugListening{false};

} // namespace app
