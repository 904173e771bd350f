#pragma once

#include <QString>

#include <optional>

namespace texts {

/// The two numbers of a ratio's text "n/d": a card writes them in two lines when one is too long, and
/// writes "out of bounds" instead when they do not fit in int.
struct RatioParts
{
    QString numerator;
    QString denominator;

    /// Both positive and within int.
    bool areWithinBounds() const;
    /// One number above the other.
    QString inTwoLines() const;
};
/// Nothing for a text of another form.
std::optional<RatioParts> ratioParts(const QString& ratio);

} // namespace texts
