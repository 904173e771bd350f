#pragma once

#include <QString>

#include <initializer_list>

class QComboBox;
class QDoubleSpinBox;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QVBoxLayout;
class QWidget;

/// The rows that the pages of the options dialog are made of.
namespace optionspage {

constexpr int PAGE_MARGIN = 14;
constexpr int ROW_SPACING = 5;
constexpr int NUMBER_WIDTH = 80;
constexpr int SHORT_MENU_WIDTH = 64;

/// An empty page; its layout is a column.
QWidget* page();
QVBoxLayout* layoutOf(QWidget* page);

QLabel* label(const QString& text, QWidget* buddy = nullptr);
QHBoxLayout* row(std::initializer_list<QWidget*> widgets);
/// Captions in the first column, controls in the second.
QGridLayout* addGrid(QVBoxLayout* page);
void addGridRow(QGridLayout* grid, QLabel* caption, QHBoxLayout* controls);
/// A long text on the left, a short menu on the right.
void addLongRow(QVBoxLayout* page, const QString& text, QComboBox* menu);

void setUpNumber(QDoubleSpinBox* box, double lowest, double highest, int decimals);
/// The long names of devices must not widen the window.
void setUpMenu(QComboBox* menu);

} // namespace optionspage
