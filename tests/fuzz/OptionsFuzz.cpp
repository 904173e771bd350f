#include "app/Settings.h"
#include "fuzz/Fuzz.h"

FUZZ_TARGET(options)
{
    static const Settings defaults;
    static const QJsonObject defaultValues = fuzz::written(defaults);

    Settings first;
    first.read(QJsonDocument::fromJson(input).object());
    QJsonObject expected = fuzz::written(first);
    FUZZ_REQUIRE(expected.keys() == defaultValues.keys());

    Settings second;
    second.read(expected);
    // A number beyond single precision is infinite in its field, which JSON cannot hold.
    for (auto value = expected.begin(); value != expected.end(); ++value) {
        if (value->isNull())
            *value = defaultValues[value.key()];
    }
    FUZZ_REQUIRE(fuzz::written(second) == expected);
}
