#pragma once

#include <QLine>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

/// The notation of a pitch's prime steps beside its note: what it says and where its parts lie.
/// Plain values, no widgets.
struct SoundGrape
{
    enum class Direction { Down, Up };

    /// Primes above 2, ascending; a prime that occurs twice stands there twice.
    QList<int> down;
    QList<int> up;

    bool operator==(const SoundGrape&) const = default;

    /// Opposite steps cancel; octaves are not shown.
    static SoundGrape fromSteps(QList<int> steps);

    /// The primes by comma, each once, with its exponent from 2 to 20 in rich text.
    struct Text
    {
        QString text;
        bool hasExponent = false;
    };
    static Text textOf(const QList<int>& primes);

    /// The black-and-white form's line, from the right of a note at `note` (its place in pixels).
    static QLine lineFrom(const QRect& note, Direction direction);
    /// Top left of the label at the end of that line.
    static QPoint labelAt(const QLine& line, Direction direction, bool hasExponent);

    /// One graphic of the coloured form.
    struct Arrow
    {
        enum Kind {
            Shaft, // with the first head
            Head,
            More, // stands for itself and all primes that have no room
        };
        Kind kind = Shaft;
        int prime = 0;
        QRect place; // pixels
    };
    /// From the right of a note at `note`, along the diagonal, in rows that stay within `area`.
    static QList<Arrow> arrowsFrom(const QRect& note, const QList<int>& primes, Direction direction,
                                   const QRect& area);
};
