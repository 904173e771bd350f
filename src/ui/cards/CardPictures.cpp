#include "ui/cards/CardPictures.h"

#include <QTransform>

void CardPictures::keepCard(const Look& look, const QPixmap& picture)
{
    const qsizetype bytes = qsizetype(picture.width()) * picture.height() * picture.depth() / 8;
    mCards.insert(look, new QPixmap(picture), bytes);
}

QStaticText CardPictures::text(const QString& text, const QFont& font, Qt::TextFormat format)
{
    const TextKey key{text, font, format};
    if (const QStaticText* known = mTexts.object(key))
        return *known;
    QStaticText laidOut;
    laidOut.setPerformanceHint(QStaticText::AggressiveCaching);
    laidOut.setTextFormat(format);
    laidOut.setText(QString(text).replace(u'\n', QChar::LineSeparator)); // which breaks a line here
    laidOut.prepare(QTransform(), font);
    mTexts.insert(key, new QStaticText(laidOut));
    return laidOut;
}

void CardPictures::clear()
{
    mCards.clear();
    mTexts.clear();
    mPapers.fill(QPixmap());
}
