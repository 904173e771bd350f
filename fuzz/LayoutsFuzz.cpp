#include "fuzz/Fuzz.h"
#include "keyboard/LayoutFile.h"
#include "keyboard/LayoutTable.h"

#include <cmath>

FUZZ_TARGET(layouts)
{
    const LayoutFile::Reading first = LayoutFile::fromText(input);
    FUZZ_REQUIRE(first.layouts.size() <= LayoutFile::MAX_LAYOUTS);
    // What is no text in Unicode changes when it is written, but only then.
    const LayoutFile::Reading second = LayoutFile::fromText(LayoutFile::text(first.layouts));
    FUZZ_REQUIRE(second.complaints.isEmpty() && second.layouts.size() == first.layouts.size());
    FUZZ_REQUIRE(LayoutFile::fromText(LayoutFile::text(second.layouts)).layouts == second.layouts);

    const auto table = LayoutTable::make(second.layouts.mid(0, 3), QString());
    for (const KeyTarget& target : table->targets) {
        FUZZ_REQUIRE(std::isfinite(target.tempered) && target.tempered >= 0.0);
        FUZZ_REQUIRE(target.ratio.numerator() == 0 || target.tempered == 0.0);
    }
}
