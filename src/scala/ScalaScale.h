#pragma once

#include "scala/ScalaError.h"
#include "scala/ScalaPitch.h"

#include <QList>
#include <QString>

#include <optional>

class QIODevice;

/// A scale of pitches above 1/1, as in a file ".scl". The last pitch is the period, by which it repeats; 1/1
/// itself is not among them. [any]
class ScalaScale
{
public:
    static constexpr int MAX_PITCHES = 65536;

    /// No pitch but 1/1.
    ScalaScale() = default;
    ScalaScale(const QString& description, const QList<ScalaPitch>& pitches);

    /// Reads what the format allows and files have: lines that end in CR, LF or both, UTF-8 and Latin-1,
    /// blanks and tabs, empty lines. What lies behind the last pitch is not read. Nothing, with the line,
    /// for what is wrong or too long.
    static std::optional<ScalaScale> read(QIODevice& device, ScalaError& error);
    static std::optional<ScalaScale> fromFile(const QString& path, ScalaError& error);

    const QString& description() const { return mDescription; }
    /// In the order of the file, which need not ascend.
    const QList<ScalaPitch>& pitches() const { return mPitches; }

    /// The line of a pitch in the file that the scale was read from, counted from 1; else 0.
    int lineOf(qsizetype pitch) const { return mLines.value(pitch); }

    /// Degree 0 is 1/1, degree 1 the first pitch; beyond both ends the scale repeats. Nothing but 1/1 in a
    /// scale without pitches.
    std::optional<ScalaPitch> degree(int number) const;

    /// Wherever it was read from.
    bool operator==(const ScalaScale& other) const
    {
        return mDescription == other.mDescription && mPitches == other.mPitches;
    }

private:
    QString mDescription;
    QList<ScalaPitch> mPitches;
    QList<int> mLines; // of the pitches in their file; empty without one
};
