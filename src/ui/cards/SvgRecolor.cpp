#include "ui/cards/SvgRecolor.h"

#include <QByteArray>
#include <QColor>

void recolorSvg(QByteArray& svg, const QColor& color)
{
    const QByteArray name = color.name(QColor::HexRgb).toLatin1();
    for (const char* property : {"fill:", "stroke:"})
        svg.replace(QByteArray(property) + "#000000", property + name);
}
