#include "tuning/PitchText.h"

#include <algorithm>

namespace pitchtext {
namespace {

QByteArray decimal(double value)
{
    constexpr int decimals = 6;
    return QByteArray::number(value, 'f', decimals);
}

QByteArray line(qsizetype width, const QByteArray& ratio, const QByteArray& cents, const QByteArray& hertz)
{
    constexpr int number = 14; // columns
    return ratio.leftJustified(width) + cents.rightJustified(number) + hertz.rightJustified(number) + '\n';
}

} // namespace

QByteArray write(const TuningScale& scale)
{
    const QByteArray head("Ratio");
    QByteArrayList ratios;
    qsizetype width = head.size();
    for (const TuningScale::Pitch& pitch : scale.pitches) {
        ratios.append(wideratio::text(pitch.ratio).toLatin1());
        width = std::max(width, ratios.last().size());
    }
    QByteArray text = scale.title + "\n" + scale.rootText() + "\n\n" + line(width, head, "Cents", "Hz");
    for (qsizetype i = 0; i < ratios.size(); ++i)
        text += line(width, ratios[i], decimal(scale.pitches[i].cents), decimal(scale.pitches[i].hertz));
    return text;
}

} // namespace pitchtext
