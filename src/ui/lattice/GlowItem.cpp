#include "ui/lattice/GlowItem.h"

#include <QPainter>
#include <QPixmapCache>
#include <QtMath>

#include <cmath>

namespace {

constexpr int LARGEST = 1024; // pixels

/// Glows of the same look have the same picture, whichever ball they belong to.
QString keyFor(const QGradient& gradient, double diameter, int pixels)
{
    QString key = QStringLiteral("glow/%1/%2").arg(pixels).arg(diameter);
    const QGradientStops stops = gradient.stops();
    for (const QGradientStop& stop : stops)
        key += QStringLiteral("/%1:%2").arg(stop.first).arg(stop.second.rgba());
    return key;
}

} // namespace

void GlowItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    const QGradient* gradient = brush().gradient();
    const double diameter = rect().width();
    const QTransform& toDevice = painter->deviceTransform();
    const double extent = diameter * std::hypot(toDevice.m11(), toDevice.m12());
    if (!gradient || extent <= 0.0)
        return;
    if (extent > LARGEST) { // far zoomed in, where few are to be seen
        QGraphicsEllipseItem::paint(painter, option, widget);
        return;
    }
    const int pixels = qCeil(extent);
    const QString key = keyFor(*gradient, diameter, pixels);
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = QPixmap(pixels, pixels);
        picture.fill(Qt::transparent);
        QPainter drawing(&picture);
        drawing.setRenderHint(QPainter::Antialiasing);
        drawing.scale(pixels / diameter, pixels / diameter);
        drawing.translate(-rect().topLeft());
        drawing.setPen(Qt::NoPen);
        drawing.setBrush(brush());
        drawing.drawEllipse(rect());
        drawing.end();
        QPixmapCache::insert(key, picture);
    }
    // On whole pixels, where drawing is a mere copy; a glow that moves by half a pixel is not noticed.
    // The world transform alone gives the place, since the view paints into its window at an offset.
    const qreal ratio = painter->device()->devicePixelRatio();
    const QPointF centre = painter->worldTransform().map(rect().center()) * ratio;
    const QPointF corner = centre - QPointF(pixels, pixels) / 2;
    picture.setDevicePixelRatio(ratio);
    painter->save();
    painter->setWorldTransform(QTransform());
    painter->drawPixmap(QPointF(corner.toPoint()) / ratio, picture);
    painter->restore();
}
