#pragma once

class QWidget;
class Settings;

/// The main window's size, place and maximised state, from one run to the next. Graphical thread.
namespace WindowPlace {

/// As the options remember it. A size is cut to the screens, and a place on a screen that was taken away
/// since is ignored.
void restore(QWidget& window, const Settings& settings);
/// A maximised or full screen window leaves the remembered size and place as they were.
void remember(const QWidget& window, Settings& settings);

} // namespace WindowPlace
