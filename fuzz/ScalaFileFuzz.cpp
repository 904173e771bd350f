#include "fuzz/Fuzz.h"
#include "model/Orlo.h"
#include "scala/ScalaKeyboard.h"
#include "scala/ScalaScale.h"
#include "tuning/ScalaImport.h"

#include <QBuffer>

#include <climits>
#include <cmath>
#include <numeric>

namespace {

template <class Content>
std::optional<Content> readFrom(const QByteArray& input)
{
    QBuffer buffer;
    buffer.setData(input);
    buffer.open(QIODevice::ReadOnly);
    ScalaError error;
    auto content = Content::read(buffer, error);
    FUZZ_REQUIRE(content.has_value() == error.reason.isEmpty());
    FUZZ_REQUIRE(error.line >= 0 && error.line <= input.size() + 1);
    return content;
}

void requireGood(const ScalaPitch& pitch)
{
    FUZZ_REQUIRE(std::isfinite(pitch.cents));
    FUZZ_REQUIRE(pitch.ratio.denominator() > 0);
    FUZZ_REQUIRE(std::gcd(pitch.ratio.numerator(), pitch.ratio.denominator()) == 1);
    QString reason;
    const auto again = ScalaPitch::fromText(pitch.toText().toUtf8(), reason);
    FUZZ_REQUIRE(again && (*again == pitch || std::abs(pitch.cents) > 1e9));
}

void requireGoodChord(const ScalaScale& scale, const std::optional<ScalaKeyboard>& keyboard)
{
    static const Orlo orlo;
    const ScalaImport import = ScalaImport::of(scale, keyboard, orlo);
    FUZZ_REQUIRE(import.ratios.contains(OrloRatio(1, 1)) && import.ratios.size() <= ScalaImport::MAX_NOTES);
    for (const OrloRatio& ratio : import.ratios) {
        FUZZ_REQUIRE(ratio.numerator() <= INT_MAX && ratio.denominator() <= INT_MAX);
        FUZZ_REQUIRE(import.ratios.count(ratio) == 1);
    }
}

} // namespace

/// A scale, then one line of a lone "#", then a keyboard.
FUZZ_TARGET(scala_file)
{
    const qsizetype border = input.indexOf("\n#\n");
    const auto scale = readFrom<ScalaScale>(border < 0 ? input : input.left(border));
    const auto keyboard = readFrom<ScalaKeyboard>(border < 0 ? input : input.mid(border + 3));
    if (scale) {
        for (const ScalaPitch& pitch : scale->pitches())
            requireGood(pitch);
        requireGoodChord(*scale, keyboard);
    }
    if (!keyboard)
        return;
    for (int key = 0; key < 128; ++key) {
        if (const auto pitch = keyboard->pitchOf(key, scale.value_or(ScalaScale())))
            FUZZ_REQUIRE(std::isfinite(pitch->cents) && pitch->ratio.denominator() > 0);
    }
}
