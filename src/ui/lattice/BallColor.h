#pragma once

#include <QColor>

class Orlo;
class OrloBall;

/// The colour of a ball of the lattice by the option `absRelView`: by its own step, by the last step as
/// seen from the absolute origin, or by the highest one.
struct BallColor
{
    QColor color;
    bool unity = false;         // the central pitch
    bool adjustsStruts = false; // a tree ball, whose struts may be thick or thin

    /// 0: relative, 1: absolute, 2: the second absolute mode.
    static BallColor of(const OrloBall& ball, const Orlo& orlo, int absRelView);

private:
    static BallColor relative(const OrloBall& ball, const Orlo& orlo);
    static BallColor absolute(const OrloBall& ball, const Orlo& orlo);
    static BallColor byHighestStep(const OrloBall& ball, const Orlo& orlo);
};
