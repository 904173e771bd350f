#pragma once

#include <QByteArray>
#include <QSvgWidget>

class SvgLoader;

/// One notation graphic on a card, which draws it: Qt never visits the widget. Takes its picture from
/// what the loader keeps, so that a new card parses nothing; a graphic that could not be loaded has no
/// size and draws nothing.
class CardGraphic : public QSvgWidget
{
public:
    CardGraphic(SvgLoader* loader, QWidget* parent);

    void setSvg(const QByteArray& svg) { mSvg = svg; }
    const QByteArray& svg() const { return mSvg; }
    /// At the graphic's own aspect ratio.
    QSize sizeForHeight(int height) const;

    /// At its place on the card.
    void draw(QPainter& painter) const { drawAt(painter, geometry()); }
    void drawAt(QPainter& painter, const QRect& place) const;

private:
    QByteArray mSvg;
    SvgLoader* const mLoader;
};
