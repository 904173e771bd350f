#pragma once

#include "model/OrloConstants.h"

#include <QMetaType>
#include <QString>

class OrloPath;
class OrloPathUnlimited;

/// An exact pitch, as a fraction of unsigned 64-bit integers in lowest terms. Equality and hashing
/// see this value alone.
///
/// A relative ratio is what a path gives by itself; an absolute one is that times the lattice's
/// transposition, and is what sounds: frequency = absolute ratio times base frequency. Ratios are
/// not kept within an octave; only the texts reduce them (OctaveReduction.h), when the option asks for it.
///
/// Construction from a zero denominator throws boost::bad_rational. All functions end for every
/// value.
class OrloRatio
{
public:
    using Rational = OrloConstants::Rational;

    /// 0/1, which is never a pitch.
    OrloRatio() = default;
    OrloRatio(unsigned long long numerator, unsigned long long denominator);
    /// Does not carry the second field: a copy travels by value, and its absolute form is taken
    /// anew where it is wanted.
    OrloRatio(const OrloRatio& other);
    explicit OrloRatio(const Rational& ratio);
    explicit OrloRatio(const OrloPath& path);
    explicit OrloRatio(const OrloPathUnlimited& path);
    virtual ~OrloRatio() = default;
    /// Takes both fields, unlike the copy constructor.
    OrloRatio& operator=(const OrloRatio& other) = default;

    void storeFromPath(const OrloPath& path);
    void storeFromUnlimitedPath(const OrloPathUnlimited& path);
    /// Fills the second field: the lattice's transposition steps times the path's steps. Graphical
    /// thread only, since it reads the list of steps.
    void storeFromAbsolutePath(const OrloPath& path);
    void storeFromAbsolutedPath(const OrloPathUnlimited& path);

    /// The product of a path's steps alone, for threads that must not read the transposition
    /// steps. `steps` is zero-terminated; a step that is no prime counts as 1.
    static Rational productOfSteps(const signed char* steps);

    /// Whether the lattice may be transposed by it: the tolerant answer to whether the product fits in 64
    /// bits, with a debug line (RatioOverflow.h). Graphical thread.
    bool canMultiplyWith(const OrloRatio& other) const;
    /// The exact answer without a log line, for the sound engine: a ratio that does not fit must not
    /// sound as another pitch. Any thread.
    bool fitsWhenMultipliedWith(const OrloRatio& other) const;

    /// ratioText() of it.
    QString toString() const;
    /// ratioText() of the absolute form.
    QString toStringAbs() const;

    /// Relative to absolute, by the present transposition (AbsoluteRatio.h); any thread. A product whose
    /// denominator wraps to 0 throws boost::bad_rational.
    Rational getAbsRatio() const;
    /// Absolute to relative.
    Rational getRelativeFromAbsoluteRatio() const;

    OrloRatio& operator*=(const OrloRatio& other);
    bool operator==(const OrloRatio& other) const { return mRatio == other.mRatio; }

    /// The canonical path (CanonicalPath.h). The caller owns it.
    OrloPath* getPathFromRatio() const;
    OrloPathUnlimited* getUnlimitedPathFromRatio() const;

    const Rational& ratio() const { return mRatio; }
    /// The second field: 0/1 unless built from a path.
    const Rational& absoluteRatio() const { return mAbsoluteRatio; }
    unsigned long long numerator() const { return mRatio.numerator(); }
    unsigned long long denominator() const { return mRatio.denominator(); }

private:
    Rational mRatio;
    Rational mAbsoluteRatio;
};

size_t qHash(const OrloRatio& ratio, size_t seed = 0);

Q_DECLARE_METATYPE(OrloRatio)
