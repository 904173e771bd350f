#pragma once

#include <QByteArray>
#include <QString>

/// A title as every reader takes it. [any]
namespace asciititle {

inline constexpr qsizetype MAX_LENGTH = 79; // letters; some readers have room for no more

/// One line of ASCII without control characters, blanks at its ends, or the "!" at its head that begins a
/// remark. Letters lose their accents; "?" stands for others. Of an empty title the program's name.
QByteArray of(const QString& title);

} // namespace asciititle
