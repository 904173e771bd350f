#include "ui/keyboard/KeyLabelItem.h"

#include "model/OrloBall.h"
#include "model/OrloPath.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloWidget.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

namespace {

// In scene units.
constexpr double TREE_HEIGHT = 8.0;
constexpr double LEAF_HEIGHT = 6.5;
constexpr double GAP = 1.0;
constexpr int LEAF_BELOW = 20; // diameter

constexpr double Z_OVER_BALLS = 1000.0;
constexpr int FONT_PIXELS = 32; // drawn smaller, since fonts have whole pixels

QFont labelFont()
{
    QFont font;
    font.setPixelSize(FONT_PIXELS);
    return font;
}

} // namespace

KeyLabelItem::KeyLabelItem(const OrloWidget& lattice, const QHash<OrloRatio, QString>& names)
{
    setZValue(Z_OVER_BALLS);
    setAcceptedMouseButtons(Qt::NoButton);
    setFlag(ItemUsesExtendedStyleOption);
    const QFontMetricsF metrics(labelFont());
    for (const OrloBallWidget* ball : lattice.balls()) {
        const QString text = names.value(ball->ball()->path().toRatio());
        if (text.isEmpty())
            continue;
        const double height = ball->diameter() < LEAF_BELOW ? LEAF_HEIGHT : TREE_HEIGHT;
        const double width = metrics.horizontalAdvance(text) * height / FONT_PIXELS;
        const QPointF corner =
            ball->scenePos() + QPointF(-width / 2.0, ball->diameter() / 2.0 + GAP); // below the ball
        const QRectF place(corner, QSizeF(width, metrics.height() * height / FONT_PIXELS));
        mLabels.append({text, place, height});
        mBounds |= place.adjusted(-GAP, -GAP, GAP, GAP);
    }
}

void KeyLabelItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*)
{
    painter->setFont(labelFont());
    for (const Label& label : mLabels) {
        if (!option->exposedRect.intersects(label.place))
            continue;
        painter->setPen(Qt::NoPen);
        painter->setBrush(QColor(0, 0, 0, 170)); // the balls beneath have any colour
        painter->drawRoundedRect(label.place.adjusted(-GAP, 0.0, GAP, 0.0), GAP, GAP);
        const double scale = label.height / FONT_PIXELS;
        painter->save();
        painter->translate(label.place.topLeft());
        painter->scale(scale, scale);
        painter->setPen(Qt::white);
        painter->drawText(QPointF(0.0, QFontMetricsF(painter->font()).ascent()), label.text);
        painter->restore();
    }
}

QStringList KeyLabelItem::texts() const
{
    QStringList texts;
    for (const Label& label : mLabels)
        texts.append(label.text);
    return texts;
}
