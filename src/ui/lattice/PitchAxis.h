#pragma once

class OrloRatio;
class OrloView;

/// How high a pitch stands beside the lattice: the height of the scene spans the ratios 1/9 to 9, as seen
/// from the present transposition, and the middle lies a little below the scene's.
///
/// There are two mappings: the cards are placed in double precision, the free balls in single precision,
/// as all of their layout is. Both end in whole pixels and can differ by one; the order of the roundings is
/// part of each, so they are not joined.
struct PitchAxis
{
    /// As the view shows its scene now.
    static PitchAxis of(const OrloView& view);

    int pixels;   // height of the scene on the view
    double units; // height of the scene in its own units
    int centre;   // y of the scene's centre on the view

    /// The y of a card's middle; the caller cuts off the fraction. The scene's height must be above 0.
    double cardHeight(const OrloRatio& absolute) const;
    /// The y of a free ball's centre.
    int freeBallHeight(const OrloRatio& absolute) const;
};
