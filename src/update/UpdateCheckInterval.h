#pragma once

class QDateTime;
class QString;

/// When the program looks for a newer version by itself.
namespace updatecheck {

/// By the option `updateCheckInterval` and the stored text of the last check.
bool isDue(int interval, const QString& lastCheck, const QDateTime& now);

} // namespace updatecheck
