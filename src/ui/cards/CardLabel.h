#pragma once

#include <QLabel>
#include <QStaticText>

class CardPictures;

/// A text on a card, which draws it: Qt never visits the label, and one painter does for all parts of a
/// card. The style sheet gives the font, the colour and perhaps a greatest height by the object name.
class CardLabel : public QLabel
{
    Q_OBJECT

public:
    CardLabel(CardPictures* pictures, QWidget* parent);

    /// Takes the size of its text, within the style sheet's greatest height.
    void fit();
    /// For a text that would be cut off or run into another: the property "long", by which the
    /// style sheet has a smaller font.
    void useSmallPrint(bool on);

    /// At its place on the card, with the middle of the text in its own middle.
    void draw(QPainter& painter) const;
    /// Somewhere else on the card; gives the width.
    int drawAt(QPainter& painter, int x, int baseline) const;

private:
    void layOutText();
    void drawText(QPainter& painter, QPointF topLeft) const;

    CardPictures* const mPictures;
    QStaticText mLaidOut;
    QString mLaidOutText;
    QFont mLaidOutFont;
};
