#include "ui/harmony/CentsRuler.h"

#include "ui/harmony/HarmonyTexts.h"

#include <QPainter>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double OCTAVE = 1200.0; // cents
constexpr int STEPS = 12;
constexpr int SIDE = 12; // left and right of the line
constexpr int TICK_WIDTH = 4;
constexpr int TICK_HEIGHT = 20;
constexpr int STEP_HEIGHT = 6;
constexpr int OCTAVE_HEIGHT = 12;
constexpr double LEAST_STEP = 4.0; // pixels between two lines of the grid
constexpr int LABEL_ROWS = 3;
constexpr int LABEL_GAP = 4;
constexpr qsizetype LONGEST_LABEL = 9;
constexpr double GRID_OPACITY = 0.45;

} // namespace

CentsRuler::CentsRuler(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void CentsRuler::setHarmony(const Harmony& harmony)
{
    mTicks.clear();
    QStringList all;
    for (int i = 0; i < harmony.notes.size(); ++i) {
        Tick tick{.label = u"1/1"_s, .isExact = harmony.notes[i].isExact()};
        if (i > 0) {
            const Harmony::Pair& pair = harmonytexts::fromLowest(harmony, i);
            const harmonytexts::PairTexts texts = harmonytexts::ofPair(harmony, pair);
            const bool isUnfit = texts.ratio.size() > LONGEST_LABEL || texts.ratio == harmonytexts::NEAR_SIGN;
            const QString cents = QString::number(pair.cents, 'f', 0);
            tick.cents = pair.cents;
            tick.label = !isUnfit       ? texts.ratio
                         : pair.isExact ? cents
                                        : harmonytexts::NEAR_SIGN + u' ' + cents;
            all.append(texts.ratio + u", "_s + texts.cents);
        }
        mTicks.append(tick);
    }
    const double span = mTicks.isEmpty() ? 0.0 : mTicks.last().cents;
    mOctaves = qMax(1, static_cast<int>(std::ceil((span - 0.001) / OCTAVE)));
    setToolTip(all.isEmpty() ? QString() : u"Above the lowest note:\n"_s + all.join(u'\n'));
    setAccessibleDescription(all.join(u"; "_s));
    update();
}

QSize CentsRuler::sizeHint() const
{
    return {0, TICK_HEIGHT + 4 + LABEL_ROWS * fontMetrics().height()};
}

double CentsRuler::xOf(double cents) const
{
    return SIDE + (width() - 2 * SIDE) * cents / (OCTAVE * mOctaves);
}

void CentsRuler::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawGrid(painter);
    drawTicks(painter);
    drawLabels(painter);
}

void CentsRuler::drawGrid(QPainter& painter) const
{
    QColor color = palette().color(QPalette::WindowText);
    color.setAlphaF(GRID_OPACITY);
    painter.setPen(QPen(color, 1.0));
    const double y = 1 + TICK_HEIGHT / 2.0;
    painter.drawLine(QPointF(xOf(0.0), y), QPointF(xOf(OCTAVE * mOctaves), y));
    const bool hasRoom = xOf(OCTAVE / STEPS) - xOf(0.0) >= LEAST_STEP;
    for (int step = 0; step <= STEPS * mOctaves; step += hasRoom ? 1 : STEPS) {
        const double half = (step % STEPS == 0 ? OCTAVE_HEIGHT : STEP_HEIGHT) / 2.0;
        const double x = xOf(step * OCTAVE / STEPS);
        painter.drawLine(QPointF(x, y - half), QPointF(x, y + half));
    }
}

void CentsRuler::drawTicks(QPainter& painter) const
{
    const QColor color = palette().color(QPalette::Highlight);
    painter.setPen(QPen(color, 1.0));
    for (const Tick& tick : mTicks) {
        painter.setBrush(tick.isExact ? QBrush(color) : QBrush(Qt::NoBrush));
        painter.drawRect(QRectF(xOf(tick.cents) - TICK_WIDTH / 2.0, 1.0, TICK_WIDTH, TICK_HEIGHT));
    }
}

/// Each in the first row with room; what finds none is in the tooltip alone.
void CentsRuler::drawLabels(QPainter& painter) const
{
    painter.setPen(palette().color(QPalette::WindowText));
    const QFontMetrics metrics = fontMetrics();
    std::array<double, LABEL_ROWS> ends{};
    for (const Tick& tick : mTicks) {
        const int width = metrics.horizontalAdvance(tick.label);
        const double left =
            qBound(0.0, xOf(tick.cents) - width / 2.0, qMax(0.0, double(this->width() - width)));
        for (int row = 0; row < LABEL_ROWS; ++row) {
            double& end = ends.at(static_cast<std::size_t>(row));
            if (end > left)
                continue;
            const double top = TICK_HEIGHT + 4 + row * metrics.height();
            painter.drawText(QRectF(left, top, width + 1, metrics.height()), Qt::AlignCenter, tick.label);
            end = left + width + LABEL_GAP;
            break;
        }
    }
}
