#pragma once

#include <QString>

class QWidget;

/// What each control says of itself, all of it in the one table of ControlHints.cpp: a tooltip in plain
/// words, and an accessible name for a control that shows only a sign.
namespace hints {

/// The tooltip of a row, in one line. Above 0, `number` fills its %1, and the last digit its %2; otherwise
/// these are left to the caller.
QString text(const char* row, int number = 0);

/// Gives a control its row's tooltip and name.
void give(QWidget* control, const char* row);

/// Gives every control below `parent` what its object name's row says. Of controls that stand in a
/// series, as "chordButton_07", the row is the name without the number. Captions get the tooltips of their
/// controls.
void giveAll(QWidget* parent);

/// A tooltip in lines that are short enough to read; the keys begin a line.
QString inLines(const QString& text);

} // namespace hints
