#include "ui/panel/TransposeWidget.h"

#include "app/Accessors.h"
#include "model/Orlo.h"
#include "sound/PdPlayer.h"
#include "ui/hints/ControlHints.h"
#include "ui/panel/PrimeToggleButton.h"
#include "ui/panel/TransposeButton.h"

#include <QBoxLayout>
#include <QLabel>

namespace {

constexpr int ROW_SPACING = 6;
constexpr int BUTTON_SPACING = 1;
constexpr int RESET_SPACING = 2;

/// As a click with the mouse; of a button that is disabled it is said why.
void press(QAbstractButton* button, const QString& whyNot)
{
    if (!button)
        return;
    button->animateClick();
    if (!button->isEnabled())
        app::say(whyNot);
}

template <class Button>
void press(const std::array<Button*, TransposeWidget::ROWS>& buttons, int row, const QString& whyNot)
{
    if (row >= 0 && row < TransposeWidget::ROWS)
        press(buttons[static_cast<size_t>(row)], whyNot);
}

} // namespace

TransposeWidget::TransposeWidget(QWidget* parent)
    : QWidget(parent)
    , mResetEvent(OrloEvent::TransposeByPrimeStep, 0.0F)
{
}

void TransposeWidget::init(Qt::Orientation orientation)
{
    mOrientation = orientation;
    auto* rows = new QBoxLayout(
        orientation == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
    rows->setSpacing(ROW_SPACING);
    rows->setContentsMargins(QMargins());
    for (int row = 0; row < ROWS; ++row)
        addPrimeRow(row, rows);
    addResetRow(rows);
    connect(app::orlo(), &Orlo::transposeOrBaseFrequencyChanged, this, &TransposeWidget::onTransposeChanged);
}

QBoxLayout* TransposeWidget::makeRow(int spacing) const
{
    auto* row =
        new QBoxLayout(mOrientation == Qt::Horizontal ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    row->setSpacing(spacing);
    row->setContentsMargins(QMargins());
    return row;
}

void TransposeWidget::addPrimeRow(int row, QBoxLayout* rows)
{
    const auto at = static_cast<size_t>(row);
    const int prime = OrloConstants::PRIMES[at];
    QBoxLayout* layout = makeRow(BUTTON_SPACING);
    rows->addLayout(layout);
    if (row == 0) {
        mPrimeButtons[at] = new PrimeToggleButton(prime, this);
        layout->addWidget(mPrimeButtons[at], 0, Qt::AlignCenter);
        return;
    }
    auto* downLabel = new QLabel(this);
    downLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* upLabel = new QLabel(this);
    mDownButtons[at] = new TransposeButton(-prime, downLabel, this);
    mPrimeButtons[at] = new PrimeToggleButton(prime, this);
    mUpButtons[at] = new TransposeButton(prime, upLabel, this);

    QList<QWidget*> widgets{downLabel, mDownButtons[at], mPrimeButtons[at], mUpButtons[at], upLabel};
    if (mOrientation == Qt::Horizontal)
        widgets.swapItemsAt(1, 3); // up stands above down
    for (QWidget* widget : std::as_const(widgets))
        layout->addWidget(widget);
}

void TransposeWidget::addResetRow(QBoxLayout* rows)
{
    mResetButton = new PrimeToggleButton(1, this);
    mResetButton->setObjectName(QStringLiteral("resetButton"));
    mResetButton->setText(QStringLiteral("="));
    mResetButton->setToolTip(QStringLiteral("Reset transpose"));
    mResetButton->setAccessibleName(QStringLiteral("Reset transpose"));
    mResetButton->setEnabled(!app::orlo()->transposeSteps().isEmpty());
    QBoxLayout* layout = makeRow(RESET_SPACING);
    rows->addLayout(layout);
    layout->addWidget(mResetButton, 0, Qt::AlignCenter);
    connect(mResetButton, &QAbstractButton::clicked, this, &TransposeWidget::onResetClicked);
}

void TransposeWidget::highlight(int row, bool on)
{
    if (row < 0 || row >= ROWS)
        return;
    mPrimeButtons[static_cast<size_t>(row)]->setHaloVisible(on);
    if (on)
        mHighlightedRow = row;
}

void TransposeWidget::moveHighlight(int by)
{
    const int row = mHighlightedRow + by;
    if (row < 1 || row >= ROWS)
        return;
    highlight(mHighlightedRow, false);
    highlight(row, true);
}

void TransposeWidget::transposeUp(int row)
{
    press(mUpButtons, row, hints::text("transposeArrowGone"));
}

void TransposeWidget::transposeDown(int row)
{
    press(mDownButtons, row, hints::text("transposeArrowGone"));
}

void TransposeWidget::toggle(int row)
{
    press(mPrimeButtons, row, QStringLiteral("The primes 1, 2 and 3 are always on."));
}

void TransposeWidget::resetTranspose()
{
    press(mResetButton, QStringLiteral("The lattice has not moved."));
}

void TransposeWidget::onResetClicked()
{
    app::player()->queueEventGui(&mResetEvent);
}

void TransposeWidget::onTransposeChanged()
{
    mResetButton->setEnabled(!app::orlo()->transposeSteps().isEmpty());
    // The halo draws the button from a cache, which is renewed when it is switched.
    PrimeToggleButton* highlighted = mPrimeButtons[static_cast<size_t>(mHighlightedRow)];
    highlighted->setHaloVisible(false);
    highlighted->setHaloVisible(true);
}
