#pragma once

#include <QByteArray>
#include <QSvgWidget>

class SvgLoader;

/// One notation graphic on a card. Draws from what the loader keeps, so that a new card parses
/// nothing; a graphic that could not be loaded has no size and draws nothing.
class CardGraphic : public QSvgWidget
{
public:
    CardGraphic(SvgLoader* loader, QWidget* parent);

    void setSvg(const QByteArray& svg);
    const QByteArray& svg() const { return mSvg; }
    /// At the graphic's own aspect ratio.
    QSize sizeForHeight(int height) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QByteArray mSvg;
    SvgLoader* const mLoader;
};
