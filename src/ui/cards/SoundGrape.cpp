#include "ui/cards/SoundGrape.h"

#include "model/OppositeSteps.h"

#include <algorithm>

namespace {

constexpr int LOWEST_SHOWN = 3;
constexpr int HIGHEST_EXPONENT = 20;

// Of the note's height.
constexpr double LINE_FACTOR = 0.7;
constexpr double ARROW_FACTOR = 1.5;
// The head fills this part of the arrow's square.
constexpr double HEAD_OF_ARROW = 0.684931506849315;
constexpr double STEP_OF_HEAD = 0.64; // from one head to the next, on both axes

constexpr int MORE_GROWTH = 4;
constexpr int MORE_RISE_DOWN = 2; // how far the mark moves up
constexpr int MORE_RISE_UP = 3;

constexpr int LABEL_GAP = 2;

QPoint middleRight(const QRect& note)
{
    return {note.x() + note.width(), note.y() + note.height() / 2};
}

/// A square whose near corner is at this point, right of it and below or above.
QRect squareFrom(QPoint corner, int size, SoundGrape::Direction direction)
{
    const int y = direction == SoundGrape::Direction::Down ? corner.y() : corner.y() - size;
    return {corner.x(), y, size, size};
}

} // namespace

SoundGrape SoundGrape::fromSteps(QList<int> steps)
{
    removeOppositePairs(steps);
    SoundGrape grape;
    for (const int step : std::as_const(steps)) {
        if (step <= -LOWEST_SHOWN)
            grape.down.append(-step);
        else if (step >= LOWEST_SHOWN)
            grape.up.append(step);
    }
    std::sort(grape.down.begin(), grape.down.end());
    std::sort(grape.up.begin(), grape.up.end());
    return grape;
}

SoundGrape::Text SoundGrape::textOf(const QList<int>& primes)
{
    Text result;
    for (auto it = primes.begin(); it != primes.end();) {
        const auto next = std::find_if(it, primes.end(), [prime = *it](int other) { return other != prime; });
        if (!result.text.isEmpty())
            result.text += u',';
        result.text += QString::number(*it);
        const auto count = next - it;
        if (count >= 2 && count <= HIGHEST_EXPONENT) {
            result.text += QStringLiteral("<sup style=\"font-size:16pt\">%1</sup>").arg(count);
            result.hasExponent = true;
        }
        it = next;
    }
    return result;
}

QLine SoundGrape::lineFrom(const QRect& note, Direction direction)
{
    const int length = qRound(note.height() * LINE_FACTOR);
    QPoint start = middleRight(note) + QPoint(1, 0);
    if (direction == Direction::Down)
        return {start, start + QPoint(length, length)};
    start.ry() -= 1;
    return {start, start + QPoint(length, -length)};
}

QPoint SoundGrape::labelAt(const QLine& line, Direction direction, bool hasExponent)
{
    const int above = direction == Direction::Down ? (hasExponent ? 4 : 2) : (hasExponent ? 11 : 8);
    return line.p2() + QPoint(LABEL_GAP, -above);
}

QList<SoundGrape::Arrow> SoundGrape::arrowsFrom(const QRect& note, const QList<int>& primes,
                                                Direction direction, const QRect& area)
{
    QList<Arrow> arrows;
    if (primes.isEmpty())
        return arrows;
    const int big = qRound(note.height() * ARROW_FACTOR);
    const int small = qRound(big * HEAD_OF_ARROW);
    const int step = qRound(small * STEP_OF_HEAD);
    const int down = direction == Direction::Down ? 1 : -1;

    const QPoint base = middleRight(note);
    arrows.append({Arrow::Shaft, primes.front(), squareFrom(base, big, direction)});

    QPoint rowStart = base;
    int along = big - small + step; // of the next head in its row, on both axes
    for (qsizetype i = 1; i < primes.size(); ++i) {
        QRect place = squareFrom(rowStart + QPoint(along, down * along), small, direction);
        if (!area.contains(place)) {
            rowStart.rx() += small;
            along = 0;
            place = squareFrom(rowStart, small, direction);
            if (!area.contains(place)) {
                Arrow& last = arrows.back();
                if (last.kind == Arrow::Head) {
                    last.kind = Arrow::More;
                    last.place.adjust(0, 0, MORE_GROWTH, MORE_GROWTH);
                    last.place.translate(0, direction == Direction::Down ? -MORE_RISE_DOWN : -MORE_RISE_UP);
                }
                break;
            }
        }
        arrows.append({Arrow::Head, primes.at(i), place});
        along += step;
    }
    return arrows;
}
