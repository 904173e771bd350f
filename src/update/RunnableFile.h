#pragma once

class QString;

/// Whether the desktop could run a file when it is asked to open it.
namespace runnablefile {

/// By the ending of its name; a name without one that is known is judged by what the file holds.
bool isRunnable(const QString& path);

} // namespace runnablefile
