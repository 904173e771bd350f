#include "scala/ScalaScale.h"

#include "scala/ScalaLines.h"

ScalaScale::ScalaScale(const QString& description, const QList<ScalaPitch>& pitches)
    : mDescription(description)
    , mPitches(pitches)
{
}

std::optional<ScalaScale> ScalaScale::read(QIODevice& device, ScalaError& error)
{
    ScalaLines lines(device);
    const auto description = lines.nextText(QStringLiteral("its description"), error);
    if (!description)
        return std::nullopt;
    const auto count = lines.nextNumber(QStringLiteral("the number of pitches"), 0, MAX_PITCHES, error);
    if (!count)
        return std::nullopt;
    QList<ScalaPitch> pitches;
    QList<int> numbers;
    while (pitches.size() < *count) {
        const auto line = lines.next(QStringLiteral("pitch %1").arg(pitches.size() + 1), error);
        if (!line)
            return std::nullopt;
        QString reason;
        const auto pitch = ScalaPitch::fromText(*line, reason);
        if (!pitch) {
            error = lines.wrong(reason);
            return std::nullopt;
        }
        pitches.append(*pitch);
        numbers.append(lines.lineNumber());
    }
    ScalaScale scale(ScalaLines::decoded(*description).simplified(), pitches);
    scale.mLines = numbers;
    return scale;
}

std::optional<ScalaScale> ScalaScale::fromFile(const QString& path, ScalaError& error)
{
    return ScalaLines::ofFile<ScalaScale>(path, error);
}

std::optional<ScalaPitch> ScalaScale::degree(int number) const
{
    const auto count = static_cast<int>(mPitches.size());
    if (count == 0)
        return number == 0 ? std::optional(ScalaPitch()) : std::nullopt;
    const int step = (number % count + count) % count;
    const int periods = (number - step) / count;
    const ScalaPitch pitch = step == 0 ? ScalaPitch() : mPitches[step - 1];
    return pitch + mPitches.last().times(periods);
}
