#pragma once

#include <chrono>
#include <functional>
#include <memory>

class MainWindow;
class QObject;
class QString;
class SoonSaver;

/// Options and chords are saved without being asked: soon after each change, and periodically. Graphical
/// thread.
namespace Autosave {

inline constexpr std::chrono::minutes INTERVAL{15};

/// Calls `save` after each interval, as long as the owner lives.
void start(QObject* owner, std::function<void()> save);
/// Updates and saves the options, and writes the chords into the chord file.
void save(const MainWindow& window, const QString& configDirectory);

/// What changes from now on is on the disk within seconds, so that a crash loses no more. The player is told
/// of files that cannot be written or could not be read whole. The window must outlive the result.
std::unique_ptr<SoonSaver> afterChanges(MainWindow& window, const QString& configDirectory);

/// The file that carries the chords from one run to the next.
QString chordFile(const QString& configDirectory);

} // namespace Autosave
