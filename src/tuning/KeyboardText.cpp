#include "tuning/KeyboardText.h"

namespace keyboardtext {
namespace {

// A longer map is left out, which means the same: each key one degree above the one below it.
constexpr qsizetype LARGEST_MAP = 127;

} // namespace

QByteArray write(const TuningScale& scale)
{
    const qsizetype count = scale.degrees.size();
    const qsizetype size = count <= LARGEST_MAP ? count : 0;
    const QByteArray root = QByteArray::number(scale.rootKey()) + '\n';
    QByteArray text = "! Written by Brevick Tuning Orlo, for the scale of the same name\n! Size of the map\n"
                      + QByteArray::number(size) + "\n! First and last key\n0\n127\n! Key of 1/1\n" + root
                      + "! Key with the frequency below\n" + root + "! Its frequency in Hz\n"
                      + TuningScale::hertzText(scale.pitches.first().hertz) + "\n! Degree of the period\n"
                      + QByteArray::number(count) + "\n! Degrees\n";
    for (qsizetype degree = 0; degree < size; ++degree)
        text += QByteArray::number(degree) + '\n';
    return text;
}

} // namespace keyboardtext
