#include "ui/dialogs/OptionsPageRows.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyledItemDelegate>

namespace optionspage {

namespace {

constexpr int SECTION_SPACING = 13;
constexpr int LABEL_WIDTH = 92;

} // namespace

QLabel* label(const QString& text, QWidget* buddy)
{
    auto* made = new QLabel(text);
    made->setBuddy(buddy);
    return made;
}

void setUpNumber(QDoubleSpinBox* box, double lowest, double highest, int decimals)
{
    box->setAlignment(Qt::AlignRight);
    box->setAccelerated(true);
    box->setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);
    box->setDecimals(decimals);
    box->setRange(lowest, highest);
    box->setFixedWidth(NUMBER_WIDTH);
}

void setUpMenu(QComboBox* menu)
{
    menu->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    menu->setItemDelegate(new QStyledItemDelegate(menu)); // without it the style sheet's rows are ignored
}

QHBoxLayout* row(std::initializer_list<QWidget*> widgets)
{
    auto* layout = new QHBoxLayout;
    layout->setSpacing(ROW_SPACING);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return layout;
}

QGridLayout* addGrid(QVBoxLayout* page)
{
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(ROW_SPACING);
    grid->setHorizontalSpacing(ROW_SPACING);
    grid->setColumnMinimumWidth(0, LABEL_WIDTH);
    grid->setColumnStretch(1, 1);
    page->addLayout(grid);
    return grid;
}

void addGridRow(QGridLayout* grid, QLabel* caption, QHBoxLayout* controls)
{
    const int number = grid->rowCount();
    grid->addWidget(caption, number, 0);
    grid->addLayout(controls, number, 1);
}

void addLongRow(QVBoxLayout* page, const QString& text, QComboBox* menu)
{
    setUpMenu(menu);
    menu->setFixedWidth(SHORT_MENU_WIDTH);
    QHBoxLayout* layout = row({label(text, menu)});
    layout->addStretch(1);
    layout->addWidget(menu);
    page->addLayout(layout);
}

QWidget* page()
{
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN);
    layout->setSpacing(SECTION_SPACING);
    return widget;
}

QVBoxLayout* layoutOf(QWidget* page)
{
    return static_cast<QVBoxLayout*>(page->layout());
}

} // namespace optionspage
