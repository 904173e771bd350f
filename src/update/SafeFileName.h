#pragma once

class QString;

/// Whether a name that a server gave can only be that of a file in the download folder.
namespace safefilename {

/// Percent signs are decoded too, so that "..%2fx" is refused like the path that it can become.
bool isSafe(const QString& name);

} // namespace safefilename
