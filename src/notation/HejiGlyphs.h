#pragma once

#include <QList>

struct HejiSpelling;

/// The signs of Helmholtz-Ellis notation as glyphs of the Standard Music Font Layout. [any]
namespace hejiglyphs {

/// From left to right before the note head: the signs of the higher primes, then the accidental with the
/// arrows of 5. A power that one glyph cannot say is stacked of several. Empty for a natural without signs.
QList<char32_t> of(const HejiSpelling& spelling);

} // namespace hejiglyphs
