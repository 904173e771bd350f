#include "ui/cards/SvgLoader.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace {

// Limits of the caches, far above the number of colours of a lattice and of sizes on a card.
constexpr qsizetype RENDERERS_KEPT = 256;
constexpr qsizetype PIXMAPS_KEPT = 512;

} // namespace

SvgLoader::SvgLoader()
    : mRenderers(RENDERERS_KEPT)
    , mPixmaps(PIXMAPS_KEPT)
{
    const struct
    {
        const char* name;
        QByteArray& bytes;
    } files[] = {
        {"trebleclef.svg", trebleClef},
        {"bassclef.svg", bassClef},
        {"doubleflat.svg", doubleFlat},
        {"flat.svg", flat},
        {"sharp.svg", sharp},
        {"doublesharp.svg", doubleSharp},
        {"note.svg", note},
        {"soundgrape_arrow.svg", arrow},
        {"soundgrape_arrowhead.svg", arrowHead},
        {"soundgrape_arrow_45up.svg", arrow45Up},
        {"soundgrape_arrowhead_45up.svg", arrowHead45Up},
        {"soundgrape_arrow_45down.svg", arrow45Down},
        {"soundgrape_arrowhead_45down.svg", arrowHead45Down},
    };
    for (const auto& file : files)
        loadSvgFile(QLatin1StringView(file.name), file.bytes);
}

SvgLoader::~SvgLoader() = default;

void SvgLoader::loadSvgFile(const QString& name, QByteArray& bytes)
{
    QFile file(QCoreApplication::applicationDirPath() + u'/' + name);
    if (!file.open(QIODevice::ReadOnly)) {
        qCritical().noquote() << QStringLiteral("Failed to load %1.").arg(name);
        return;
    }
    bytes = file.readAll();
}

QSvgRenderer* SvgLoader::renderer(const QByteArray& svg)
{
    if (QSvgRenderer* known = mRenderers.object(svg))
        return known;
    auto* made = new QSvgRenderer;
    if (!svg.isEmpty())
        made->load(svg);
    mRenderers.insert(svg, made);
    return made;
}

QSize SvgLoader::defaultSize(const QByteArray& svg)
{
    const QSvgRenderer* graphic = renderer(svg);
    return graphic->isValid() ? graphic->defaultSize() : QSize();
}

QPixmap SvgLoader::pixmap(const QByteArray& svg, QSize size, qreal pixelRatio)
{
    const PixmapKey key{svg, size, pixelRatio};
    if (const QPixmap* known = mPixmaps.object(key))
        return *known;
    QSvgRenderer* graphic = renderer(svg);
    if (!graphic->isValid() || size.isEmpty())
        return {};
    QPixmap drawn((QSizeF(size) * pixelRatio).toSize());
    drawn.setDevicePixelRatio(pixelRatio);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    graphic->render(&painter, QRectF(QPointF(0.0, 0.0), QSizeF(size)));
    painter.end();
    mPixmaps.insert(key, new QPixmap(drawn));
    return drawn;
}
