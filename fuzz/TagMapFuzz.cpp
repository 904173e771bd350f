#include "external/RfidMap.h"
#include "fuzz/Fuzz.h"
#include "sound/ThreadCheck.h"

namespace {
const QString VALUE = QStringLiteral("value");
}

FUZZ_TARGET(tag_map)
{
    const ThreadCheck::RoleOfThisThread role(ThreadCheck::Role::Listener);
    const QJsonObject json = QJsonDocument::fromJson(input).object();
    RfidMap first;
    first.read(json);
    const QJsonObject once = fuzz::written(first);
    FUZZ_REQUIRE(once.size() <= json.size());

    QJsonObject expected;
    for (auto entry = once.begin(); entry != once.end(); ++entry) {
        FUZZ_REQUIRE(first.lookup(entry.key()));
        QJsonObject event = entry->toObject();
        if (event[VALUE].isNull()) // infinite, which JSON cannot hold
            event[VALUE] = 0;
        // Ten letters can have more than ten in lower case, which are cut when the file is read again.
        expected.insert(entry.key().left(10).toLower(), event);
    }
    RfidMap second;
    second.read(once);
    FUZZ_REQUIRE(fuzz::written(second) == expected);
}
