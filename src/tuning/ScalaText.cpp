#include "tuning/ScalaText.h"

#include <limits>

namespace scalatext {
namespace {

/// Every reader takes a ratio of 31 bits with a slash. Larger ones are cents, with the ratio as a remark.
QByteArray line(const TuningScale::Pitch& pitch)
{
    constexpr int largest = std::numeric_limits<int>::max();
    constexpr int decimals = 6;
    QByteArray ratio = wideratio::text(pitch.ratio).toLatin1() + '\n';
    if (numerator(pitch.ratio) <= largest && denominator(pitch.ratio) <= largest)
        return ratio;
    return "! " + ratio + QByteArray::number(pitch.cents, 'f', decimals) + '\n';
}

} // namespace

// Lines end in LF, and nothing stands beside a number: some readers take neither CR nor labels.
QByteArray write(const TuningScale& scale)
{
    QByteArray text = "! Written by Brevick Tuning Orlo\n! " + scale.rootText() + "\n!\n" + scale.title + '\n'
                      + QByteArray::number(scale.degrees.size()) + "\n!\n";
    for (const TuningScale::Pitch& degree : scale.degrees)
        text += line(degree);
    return text;
}

} // namespace scalatext
