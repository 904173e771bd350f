#include "fuzz/Fuzz.h"
#include "sound/MacroList.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QString textOf(const MacroList& list)
{
    QStringList macros;
    for (qsizetype i = 0; i < list.names.size(); ++i) {
        const float value = list.defaults[i];
        const QString number =
            QString::number(static_cast<double>(value), 'g', std::numeric_limits<float>::max_digits10);
        macros.append(value == MacroList::NO_DEFAULT ? list.names[i] : list.names[i] + u'(' + number + u')');
    }
    return macros.join(u':');
}

} // namespace

FUZZ_TARGET(macro_list)
{
    const QString text = QString::fromUtf8(input);
    const MacroList list = MacroList::parse(text);
    FUZZ_REQUIRE(list.names.size() == text.count(u':') + 1);
    FUZZ_REQUIRE(list.names.size() == list.defaults.size());
    FUZZ_REQUIRE(list.names.join(u':').size() <= text.size());
    for (const float value : list.defaults)
        FUZZ_REQUIRE(std::isfinite(value));

    const MacroList again = MacroList::parse(textOf(list));
    FUZZ_REQUIRE(again.names == list.names);
    FUZZ_REQUIRE(std::ranges::equal(again.defaults, list.defaults)); // by value: the text of -0 is "0"
}
