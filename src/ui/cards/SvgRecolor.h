#pragma once

class QByteArray;
class QColor;

/// Puts a colour in the place of black in a graphic's text, for "fill" and "stroke".
void recolorSvg(QByteArray& svg, const QColor& color);
