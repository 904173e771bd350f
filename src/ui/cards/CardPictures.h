#pragma once

#include "ui/cards/CardContents.h"

#include <QCache>
#include <QFont>
#include <QPixmap>
#include <QStaticText>

#include <array>

/// What was drawn for the cards of a page and may be drawn again: empty papers, whole cards and texts.
/// A transposition and its way back show the same few, and a page that moves or lights up shows them all
/// anew. Holds for one style sheet. Graphical thread only.
class CardPictures
{
public:
    /// All that tells one picture of a whole card from another.
    struct Look
    {
        CardContents contents;
        bool atStackTwo = false;
        QSize size;
        qreal pixelRatio = 1.0;

        bool operator==(const Look&) const = default;
        friend size_t qHash(const Look& look, size_t seed)
        {
            return qHashMulti(seed, look.contents.hertz, look.contents.ratio, look.contents.cents,
                              look.atStackTwo);
        }
    };
    /// Null: it is not kept.
    const QPixmap* card(const Look& look) const { return mCards.object(look); }
    void keepCard(const Look& look, const QPixmap& picture);

    /// Laid out, to be drawn with this font.
    QStaticText text(const QString& text, const QFont& font, Qt::TextFormat format);

    /// The empty paper that all cards of a stack share. A caller that finds it null or of the wrong size
    /// redraws it.
    QPixmap& paper(bool atStackTwo) { return mPapers[atStackTwo ? 1 : 0]; }

    /// For another style sheet.
    void clear();

private:
    struct TextKey
    {
        QString text;
        QFont font;
        Qt::TextFormat format = Qt::PlainText;

        bool operator==(const TextKey&) const = default;
        friend size_t qHash(const TextKey& key, size_t seed) { return qHashMulti(seed, key.text, key.font); }
    };

    static constexpr qsizetype BYTES_KEPT = 2 << 20; // of cards; forty at a pixel ratio of 1
    static constexpr qsizetype TEXTS_KEPT = 1024;

    QCache<Look, QPixmap> mCards{BYTES_KEPT};
    QCache<TextKey, QStaticText> mTexts{TEXTS_KEPT};
    std::array<QPixmap, 2> mPapers;
};
