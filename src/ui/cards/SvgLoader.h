#pragma once

#include "ui/cards/CardPictures.h"
#include "ui/cards/HejiFont.h"

#include <QByteArray>
#include <QCache>
#include <QHashFunctions>
#include <QPixmap>
#include <QSize>

class QSvgRenderer;

/// The notation graphics, read once from the resource directory: black drawings, to be recoloured
/// in their text. A file that cannot be read leaves its array empty, and the cards go without it.
///
/// Caches what was parsed and drawn of them, since a chord change draws the same few graphics in the
/// same few colours and sizes over and over. Graphical thread only.
class SvgLoader
{
public:
    SvgLoader();
    ~SvgLoader();
    SvgLoader(const SvgLoader&) = delete;
    SvgLoader& operator=(const SvgLoader&) = delete;

    /// By file name. Logs and leaves `bytes` when the file cannot be opened.
    void loadSvgFile(const QString& name, QByteArray& bytes);

    /// In the graphic's own units; null for a graphic that cannot be drawn.
    QSize defaultSize(const QByteArray& svg);
    /// Drawn to fill `size` pixels of a screen with this pixel ratio.
    QPixmap pixmap(const QByteArray& svg, QSize size, qreal pixelRatio);

    /// What is kept of the cards that these graphics stand on.
    CardPictures& pictures() { return mPictures; }
    HejiFont& hejiFont() { return mHejiFont; }

    QByteArray trebleClef;
    QByteArray bassClef;
    QByteArray doubleFlat;
    QByteArray flat;
    QByteArray sharp;
    QByteArray doubleSharp;
    QByteArray note;
    QByteArray arrow;
    QByteArray arrowHead;
    QByteArray arrow45Up;
    QByteArray arrowHead45Up;
    QByteArray arrow45Down;
    QByteArray arrowHead45Down;

private:
    struct PixmapKey
    {
        QByteArray svg;
        QSize size;
        qreal pixelRatio = 1.0;

        bool operator==(const PixmapKey&) const = default;
        friend size_t qHash(const PixmapKey& key, size_t seed)
        {
            return qHashMulti(seed, key.svg, key.size.width(), key.size.height(), key.pixelRatio);
        }
    };

    QSvgRenderer* renderer(const QByteArray& svg);

    QCache<QByteArray, QSvgRenderer> mRenderers;
    QCache<PixmapKey, QPixmap> mPixmaps;
    CardPictures mPictures;
    HejiFont mHejiFont;
};
