#pragma once

#include <QString>

#include <optional>

struct CardContents;

namespace texts {

/// What a card says when the pointer rests on it, in short lines: name and cents, ratio, frequency; its
/// Helmholtz-Ellis spelling, where the staff shows that; and where it is heard, in Hz, when that is
/// elsewhere, as after a glissando.
QString cardTip(const CardContents& contents, std::optional<float> heard);

} // namespace texts
