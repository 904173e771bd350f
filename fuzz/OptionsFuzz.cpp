#include "app/Settings.h"
#include "fuzz/Fuzz.h"

FUZZ_TARGET(options)
{
    const TestHome& home = fuzz::cleanHome();
    static const QJsonObject defaults = fuzz::written(Settings());
    const QString fileName = QStringLiteral("options.json");

    home.write(fileName, input);
    Settings first;
    const bool isGood = first.init();
    FUZZ_REQUIRE(isGood != QJsonDocument::fromJson(input).isNull());
    QJsonObject expected = fuzz::written(first);
    FUZZ_REQUIRE(isGood || expected == defaults);
    FUZZ_REQUIRE(expected.keys() == defaults.keys());

    FUZZ_REQUIRE(first.save());
    FUZZ_REQUIRE(QJsonDocument::fromJson(home.read(fileName)).object() == expected);
    Settings second;
    FUZZ_REQUIRE(second.init());
    // A number beyond single precision is infinite in its field, which JSON cannot hold.
    for (auto value = expected.begin(); value != expected.end(); ++value) {
        if (value->isNull())
            *value = defaults[value.key()];
    }
    FUZZ_REQUIRE(fuzz::written(second) == expected);
}
