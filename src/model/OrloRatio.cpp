#include "model/OrloRatio.h"

#include "app/Accessors.h"
#include "model/AbsoluteRatio.h"
#include "model/CanonicalPath.h"
#include "model/Orlo.h"
#include "model/OrloPath.h"
#include "model/OrloPathUnlimited.h"
#include "model/RatioOverflow.h"
#include "model/RatioText.h"

using OrloConstants::Rational;

namespace {

/// Multiplies by the step's rational, or divides by it for a negative step. A step that is no
/// prime (a hand-written map may name one) leaves the ratio as it is.
void multiplyByStep(Rational& ratio, int step)
{
    if (!OrloConstants::isValidPrime(step))
        return;
    const Rational& prime = OrloConstants::PRIME_RATIONALS[static_cast<size_t>(qAbs(step))];
    ratio *= step > 0 ? prime : Rational(prime.denominator(), prime.numerator());
}

Rational absoluteProduct(const signed char* steps)
{
    Rational product(1, 1);
    if (const Orlo* orlo = app::orlo()) {
        for (const int step : orlo->transposeSteps())
            multiplyByStep(product, step);
    }
    for (; *steps != 0; ++steps)
        multiplyByStep(product, *steps);
    return product;
}

} // namespace

OrloRatio::OrloRatio(unsigned long long numerator, unsigned long long denominator)
    : mRatio(numerator, denominator)
{
}

OrloRatio::OrloRatio(const OrloRatio& other)
    : mRatio(other.mRatio) // as it stands: a wrapped product need not be in lowest terms
{
}

OrloRatio::OrloRatio(const Rational& ratio)
    : mRatio(ratio.numerator(), ratio.denominator())
{
}

OrloRatio::OrloRatio(const OrloPath& path)
{
    storeFromPath(path);
}

OrloRatio::OrloRatio(const OrloPathUnlimited& path)
{
    storeFromUnlimitedPath(path);
}

void OrloRatio::storeFromPath(const OrloPath& path)
{
    mRatio = productOfSteps(path.toCharArray());
    storeFromAbsolutePath(path);
}

void OrloRatio::storeFromUnlimitedPath(const OrloPathUnlimited& path)
{
    mRatio = productOfSteps(path.toCharArray());
    storeFromAbsolutedPath(path);
}

void OrloRatio::storeFromAbsolutePath(const OrloPath& path)
{
    mAbsoluteRatio = absoluteProduct(path.toCharArray());
}

void OrloRatio::storeFromAbsolutedPath(const OrloPathUnlimited& path)
{
    mAbsoluteRatio = absoluteProduct(path.toCharArray());
}

Rational OrloRatio::productOfSteps(const signed char* steps)
{
    Rational product(1, 1);
    for (; *steps != 0; ++steps)
        multiplyByStep(product, *steps);
    return product;
}

bool OrloRatio::canMultiplyWith(const OrloRatio& other) const
{
    return ratiooverflow::productIsClose(*this, other);
}

bool OrloRatio::fitsWhenMultipliedWith(const OrloRatio& other) const
{
    return ratiooverflow::productFits(*this, other);
}

QString OrloRatio::toString() const
{
    return ratioText({mRatio.numerator(), mRatio.denominator()});
}

QString OrloRatio::toStringAbs() const
{
    return ratioText(ratios::absoluteFraction(*this));
}

Rational OrloRatio::getAbsRatio() const
{
    const auto [n, d] = ratios::absoluteFraction(*this);
    return Rational(n, d);
}

Rational OrloRatio::getRelativeFromAbsoluteRatio() const
{
    const auto [n, d] = ratios::relativeFraction(*this);
    return Rational(n, d);
}

OrloRatio& OrloRatio::operator*=(const OrloRatio& other)
{
    mRatio *= other.mRatio;
    return *this;
}

OrloPath* OrloRatio::getPathFromRatio() const
{
    return new OrloPath(canonicalpath::of<OrloPath>(mRatio));
}

OrloPathUnlimited* OrloRatio::getUnlimitedPathFromRatio() const
{
    return new OrloPathUnlimited(canonicalpath::of<OrloPathUnlimited>(mRatio));
}

size_t qHash(const OrloRatio& ratio, size_t seed)
{
    return (seed * 31 + ratio.numerator()) * 31 + ratio.denominator();
}
