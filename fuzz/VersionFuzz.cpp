#include "fuzz/Fuzz.h"
#include "update/VersionOrder.h"

#include <QStringList>

/// Versions in lines: they are in one order, whatever the texts.
FUZZ_TARGET(version)
{
    const QStringList texts = QString::fromUtf8(input).split(u'\n');
    const QString x = texts.value(0);
    const QString y = texts.value(1);
    const QString z = texts.value(2);
    FUZZ_REQUIRE(!isNewerVersion(x, x));
    const QString longer = x + QStringLiteral(".0");
    FUZZ_REQUIRE(isNewerVersion(longer, x) && !isNewerVersion(x, longer));
    FUZZ_REQUIRE(!isNewerVersion(x, y) || !isNewerVersion(y, x));
    FUZZ_REQUIRE(!isNewerVersion(x, y) || !isNewerVersion(y, z) || isNewerVersion(x, z));
}
