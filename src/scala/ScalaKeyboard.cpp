#include "scala/ScalaKeyboard.h"

#include "scala/ScalaLines.h"
#include "scala/ScalaScale.h"

namespace {

std::optional<double> readFrequency(ScalaLines& lines, ScalaError& error)
{
    const auto line = lines.next(QStringLiteral("the reference frequency"), error);
    if (!line)
        return std::nullopt;
    bool isNumber = false;
    const double value = ScalaLines::word(*line).toDouble(&isNumber);
    if (isNumber && value > 0.0 && value <= ScalaKeyboard::MAX_FREQUENCY)
        return value;
    error = lines.wrong(QStringLiteral("This is not a frequency from 0 to 1000000 Hz."));
    return std::nullopt;
}

/// What the keys of the pattern play. The file may end before it does.
bool readDegrees(ScalaLines& lines, int size, QList<std::optional<int>>& degrees, ScalaError& error)
{
    constexpr int most = ScalaKeyboard::MAX_NUMBER;
    while (degrees.size() < size) {
        ScalaError failure;
        const auto line = lines.next(QStringLiteral("the degrees"), failure);
        if (!line && !lines.isAtEnd()) {
            error = failure;
            return false;
        }
        if (!line || ScalaLines::word(*line).toLower() == "x") {
            degrees.append(std::nullopt);
            continue;
        }
        degrees.append(ScalaLines::number(*line, -most, most));
        if (!degrees.last()) {
            error = lines.wrong(QStringLiteral("This is neither a degree nor x."));
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<ScalaKeyboard> ScalaKeyboard::read(QIODevice& device, ScalaError& error)
{
    ScalaLines lines(device);
    ScalaKeyboard keyboard;
    const auto take = [&](const QString& what, int& value) {
        const auto number = lines.nextNumber(what, -MAX_NUMBER, MAX_NUMBER, error);
        value = number.value_or(value);
        return number.has_value();
    };
    const auto size = lines.nextNumber(QStringLiteral("the size of the map"), 0, MAX_SIZE, error);
    if (!size || !take(QStringLiteral("the first key"), keyboard.first)
        || !take(QStringLiteral("the last key"), keyboard.last)
        || !take(QStringLiteral("the middle key"), keyboard.middle)
        || !take(QStringLiteral("the reference key"), keyboard.referenceKey))
        return std::nullopt;
    const auto frequency = readFrequency(lines, error);
    if (!frequency || !take(QStringLiteral("the degree of the octave"), keyboard.octaveDegree)
        || !readDegrees(lines, *size, keyboard.degrees, error))
        return std::nullopt;
    keyboard.referenceFrequency = *frequency;
    return keyboard;
}

std::optional<ScalaKeyboard> ScalaKeyboard::fromFile(const QString& path, ScalaError& error)
{
    return ScalaLines::ofFile<ScalaKeyboard>(path, error);
}

std::optional<ScalaPitch> ScalaKeyboard::pitchOf(int key, const ScalaScale& scale) const
{
    if (key < first || key > last)
        return std::nullopt;
    const int offset = key - middle;
    if (degrees.isEmpty())
        return scale.degree(offset);
    const auto size = static_cast<int>(degrees.size());
    const int place = (offset % size + size) % size;
    const int repeats = (offset - place) / size;
    auto pitch = degrees[place] ? scale.degree(*degrees[place]) : std::nullopt;
    const int octave = octaveDegree != 0 ? octaveDegree : static_cast<int>(scale.pitches().size());
    if (!pitch || repeats == 0)
        return pitch;
    const auto period = octave != 0 ? scale.degree(octave) : std::nullopt;
    return period ? std::optional(*pitch + period->times(repeats)) : std::nullopt;
}
