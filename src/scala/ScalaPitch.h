#pragma once

#include "model/OrloRatio.h"

#include <QByteArrayView>
#include <QString>

#include <optional>

/// A pitch above 1/1, as a scale gives it: an exact ratio where there is one within 64 bits, and in any case
/// its cents. [any]
struct ScalaPitch
{
    OrloRatio ratio{1, 1}; // 0/1: none
    double cents = 0.0;    // of the ratio too; finite

    /// Of a ratio that is not 0.
    static ScalaPitch of(const OrloRatio& ratio);
    static ScalaPitch ofCents(double cents);
    /// A pitch line: cents with a period, "n/d", or a whole number. What follows behind it is ignored when it
    /// cannot belong to a number. Nothing, with the reason, for what is no pitch.
    static std::optional<ScalaPitch> fromText(QByteArrayView line, QString& reason);
    /// Reads back to the same pitch: "n/d", or the cents with a period.
    QString toText() const;

    bool isExact() const { return ratio.numerator() != 0; }
    /// Hz for each Hz of 1/1. Infinite or 0 far beyond what can be heard.
    double factor() const;

    /// One on top of the other.
    ScalaPitch operator+(const ScalaPitch& other) const;
    /// So many on top of each other; below 0 downward.
    ScalaPitch times(int count) const;
    bool operator==(const ScalaPitch& other) const = default;
};
