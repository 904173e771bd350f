#include "app/Accessors.h"
#include "app/Settings.h"
#include "fuzz/Fuzz.h"
#include "model/OrloPath.h"
#include "model/OrloPathUnlimited.h"
#include "model/OrloRatio.h"
#include "model/RatioText.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

template <class Path>
Path readPath(const QString& text, int limit)
{
    const Path path(text);
    const Path again(path.toString());
    FUZZ_REQUIRE(again == path && again.isValid() == path.isValid());
    FUZZ_REQUIRE(path.length() <= limit && path.toList().size() == path.length());
    return path;
}

/// Both forms end and are no longer than two numbers of 64 bits.
void readRatio(const OrloRatio& ratio, Settings& settings)
{
    for (const bool isReduced : {false, true}) {
        settings.ratiosWithinOctave = isReduced;
        FUZZ_REQUIRE(ratio.toString().size() <= 41 && ratio.toStringAbs().size() <= 41);
    }
    const std::unique_ptr<OrloPath> path(ratio.getPathFromRatio());
    const std::unique_ptr<OrloPathUnlimited> unlimited(ratio.getUnlimitedPathFromRatio());
    FUZZ_REQUIRE(path->isValid() && unlimited->isValid());
    FUZZ_REQUIRE(path->toList() == unlimited->toList().first(path->length()));
}

} // namespace

/// Two numbers of 64 bits, then the text of a path.
FUZZ_TARGET(path_and_ratio)
{
    Settings settings;
    app::setParts({.settings = &settings});
    unsigned long long numbers[2]{};
    const auto bytes = std::min<std::size_t>(sizeof numbers, static_cast<std::size_t>(input.size()));
    std::memcpy(numbers, input.data(), bytes);

    const QString text = QString::fromUtf8(input.mid(static_cast<qsizetype>(bytes)));
    const auto path = readPath<OrloPath>(text, 6);
    const auto unlimited = readPath<OrloPathUnlimited>(text, 100);
    readRatio(path.toRatio(), settings);
    readRatio(unlimited.toRatio(), settings);
    // Six steps fit in 64 bits, so that the pitch comes back whichever way it was reached.
    const std::unique_ptr<OrloPathUnlimited> back(path.toRatio().getUnlimitedPathFromRatio());
    FUZZ_REQUIRE(back->toRatio() == path.toRatio());

    if (numbers[1] == 0)
        return;
    const OrloRatio ratio(numbers[0], numbers[1]);
    readRatio(ratio, settings);
    if (ratio.fitsWhenMultipliedWith(path.toRatio())) {
        OrloRatio product(ratio);
        product *= path.toRatio();
        FUZZ_REQUIRE(product.denominator() > 0 && (product.numerator() > 0 || numbers[0] == 0));
    }
    app::setParts({});
}
