#pragma once

#include "model/OrloConstants.h"
#include "sound/OrloEvent.h"

#include <QWidget>

#include <array>

class PrimeToggleButton;
class QBoxLayout;
class TransposeButton;

/// A row of controls for each prime: down, the prime itself as a switch, up, and the count of net
/// steps on either side. Below them the reset of the transposition.
class TransposeWidget : public QWidget
{
    Q_OBJECT

public:
    /// Rows are indices into OrloConstants::PRIMES: 0 is the prime 1, which has no arrows.
    static constexpr int ROWS = static_cast<int>(std::tuple_size_v<decltype(OrloConstants::PRIMES)>);

    explicit TransposeWidget(QWidget* parent = nullptr);

    /// To be called once, after the lattice has been made. `orientation` is the direction from row to row.
    void init(Qt::Orientation orientation);

    /// Lights the row's prime; `on` makes it the highlighted row.
    void highlight(int row, bool on);
    /// From 1 to the last.
    int highlightedRow() const { return mHighlightedRow; }
    /// Moves the highlight up (-1) or down (1). At the first and last row it stays.
    void moveHighlight(int by);
    // Each presses a button, as a click with the mouse would. Where the row has no such button,
    // nothing happens.
    void transposeUp(int row);
    void transposeDown(int row);
    void toggle(int row);
    void resetTranspose();

public slots:
    void onResetClicked();
    void onTransposeChanged();

private:
    QBoxLayout* makeRow(int spacing) const;
    void addPrimeRow(int row, QBoxLayout* rows);
    void addResetRow(QBoxLayout* rows);

    Qt::Orientation mOrientation = Qt::Vertical;
    std::array<PrimeToggleButton*, ROWS> mPrimeButtons{};
    std::array<TransposeButton*, ROWS> mDownButtons{};
    std::array<TransposeButton*, ROWS> mUpButtons{};
    PrimeToggleButton* mResetButton = nullptr;
    int mHighlightedRow = 1;
    const OrloEvent mResetEvent;
};
