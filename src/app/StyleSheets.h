#pragma once

class QPalette;
class QString;

/// The look of all widgets. Graphical thread.
namespace StyleSheets {

/// Applies "style.qss" and "style_mac.qss" of this folder as one. False, with a critical line and
/// nothing applied, unless both can be read.
bool load(const QString& directory);

/// Style sheets do not reach the links in texts, and Qt's blue is too dark for these backgrounds.
QPalette withLinkColours(QPalette palette);

} // namespace StyleSheets
