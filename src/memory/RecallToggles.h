#pragma once

#include "model/OrloRatio.h"

#include <QList>

/// Which notes a recall toggles, from the chord and from what sounds, both absolute. The
/// alternating mode needs no rule: it toggles the whole chord.
namespace recalltoggles {

/// The chord replaces what sounds: notes that are not in it go off, its silent notes come on.
QList<OrloRatio> standard(const QList<OrloRatio>& chord, const QList<OrloRatio>& sounding);
/// Notes of the chord that sound go off; when none sounds, all of it comes on.
QList<OrloRatio> additive(const QList<OrloRatio>& chord, const QList<OrloRatio>& sounding);

} // namespace recalltoggles
