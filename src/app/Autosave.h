#pragma once

#include <chrono>
#include <functional>

class MainWindow;
class QObject;
class QString;

/// The periodic safety save of options and chords: a crash loses at most what came after the last one.
/// Graphical thread.
namespace Autosave {

inline constexpr std::chrono::minutes INTERVAL{15};

/// Calls `save` after each interval, as long as the owner lives.
void start(QObject* owner, std::function<void()> save);
/// Updates and saves the options, and writes the chords into the chord file.
void save(const MainWindow& window, const QString& configDirectory);

/// The file that carries the chords from one run to the next.
QString chordFile(const QString& configDirectory);

} // namespace Autosave
