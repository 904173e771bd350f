#include "memory/RecallToggles.h"

#include <QSet>

namespace recalltoggles {

namespace {

QList<OrloRatio> chosen(const QList<OrloRatio>& from, const QList<OrloRatio>& set, bool inSet)
{
    const QSet<OrloRatio> lookup(set.begin(), set.end());
    QList<OrloRatio> result;
    for (const OrloRatio& ratio : from) {
        if (lookup.contains(ratio) == inSet)
            result.append(ratio);
    }
    return result;
}

} // namespace

QList<OrloRatio> standard(const QList<OrloRatio>& chord, const QList<OrloRatio>& sounding)
{
    return chosen(sounding, chord, false) + chosen(chord, sounding, false);
}

QList<OrloRatio> additive(const QList<OrloRatio>& chord, const QList<OrloRatio>& sounding)
{
    const QList<OrloRatio> toggles = chosen(chord, sounding, true);
    return toggles.isEmpty() ? chord : toggles;
}

} // namespace recalltoggles
