#pragma once

class QString;

/// Whether version `x` is newer than `y`: by numbers between the dots, from the left; a part that cannot
/// be read counts as 0, and of two that begin alike the longer one is newer.
bool isNewerVersion(const QString& x, const QString& y);
