#include "model/OrloRatio.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloPath.h"
#include "model/OrloPathUnlimited.h"

#include <QDebug>

#include <limits>
#include <memory>
#include <numeric>
#include <utility>

using OrloConstants::Rational;

namespace {

using Integer = unsigned long long;
using Fraction = std::pair<Integer, Integer>; // not normalised; the denominator may be 0

constexpr Integer LARGEST = std::numeric_limits<Integer>::max();
constexpr float MULTIPLY_TOLERANCE = 0x1.4f8b58p-17F; // 1e-05

Fraction transposition()
{
    const Orlo* orlo = app::orlo();
    if (!orlo)
        return {1, 1};
    const auto value = orlo->publishedTransposition();
    return {value.numerator, value.denominator};
}

/// The product with the transposition's numerator and denominator, then the primes cancelled. The
/// product comes first, so it may wrap; Orlo::canTransposeTo keeps players away from that.
Fraction multipliedAndCancelled(const Rational& ratio, Integer byNumerator, Integer byDenominator)
{
    Integer n = byNumerator * ratio.numerator();
    Integer d = byDenominator * ratio.denominator();
    if (n == 0 || d == 0)
        return {n, d}; // 0 is divisible for ever
    for (const int prime : OrloConstants::PRIMES) {
        const auto p = static_cast<Integer>(prime);
        while (p > 1 && n % p == 0 && d % p == 0) {
            n /= p;
            d /= p;
        }
    }
    return {n, d};
}

Fraction absoluteFraction(const Rational& ratio)
{
    const auto [numerator, denominator] = transposition();
    return multipliedAndCancelled(ratio, numerator, denominator);
}

/// Into the octave from 1 up to 2, as far as that fits in 64 bits.
Fraction withinOctave(Fraction fraction)
{
    auto [n, d] = fraction;
    if (n == 0 || d == 0)
        return fraction;
    while (n / 2 >= d) {
        if (n % 2 == 0)
            n /= 2;
        else if (d <= LARGEST / 2)
            d *= 2;
        else
            break;
    }
    while (n < d) {
        if (d % 2 == 0)
            d /= 2;
        else if (n <= LARGEST / 2)
            n *= 2;
        else
            break;
    }
    return {n, d};
}

QString displayText(Fraction fraction)
{
    const Settings* settings = app::settings();
    if (!settings || settings->ratiosWithinOctave)
        fraction = withinOctave(fraction);
    return QString::number(fraction.first) + u'/' + QString::number(fraction.second);
}

double quotient(const Rational& ratio)
{
    return static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator());
}

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

/// Appends `sign * p` for each odd prime p in `number`, ascending, and moves p's power of 2 into it.
template <class Path>
void takeOddPrimes(Path& path, Integer& number, int sign)
{
    for (const int prime : OrloConstants::PRIMES) {
        if (prime < 3)
            continue;
        const auto p = static_cast<Integer>(prime);
        while (number % p == 0) {
            path.addLeaf(static_cast<signed char>(sign * prime));
            number = number / p * OrloConstants::octaveDivisor(prime);
        }
    }
}

template <class Path>
Path* pathOf(const Rational& ratio)
{
    auto path = std::make_unique<Path>();
    Integer n = ratio.numerator();
    Integer d = ratio.denominator();
    if (n == 0 || d == 0)
        return path.release();
    takeOddPrimes(*path, n, 1);
    takeOddPrimes(*path, d, -1);
    while (n % 2 == 0 && d % 2 == 0) {
        n /= 2;
        d /= 2;
    }
    for (; n % 2 == 0; n /= 2)
        path->addLeaf(2);
    for (; d % 2 == 0; d /= 2)
        path->addLeaf(-2);
    return path.release();
}

} // namespace

OrloRatio::OrloRatio(unsigned long long numerator, unsigned long long denominator)
    : mRatio(numerator, denominator)
{
}

OrloRatio::OrloRatio(const OrloRatio& other)
    : mRatio(other.mRatio) // in lowest terms already
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
    Rational test = mRatio;
    test *= other.mRatio;
    const double testProduct = quotient(test);
    const double realProduct = quotient(mRatio) * quotient(other.mRatio);
    const auto difference = static_cast<float>(qAbs(testProduct - realProduct));
    if (difference > MULTIPLY_TOLERANCE) {
        qDebug().noquote() << QStringLiteral(
                                  "canMultiply fail on %1 * %2:\n  test product: %3, real product: %4")
                                  .arg(toString(), other.toString())
                                  .arg(testProduct)
                                  .arg(realProduct);
        return false;
    }
    return true;
}

bool OrloRatio::fitsWhenMultipliedWith(const OrloRatio& other) const
{
    const Integer across = std::gcd(numerator(), other.denominator());
    const Integer back = std::gcd(other.numerator(), denominator());
    if (across == 0 || back == 0 || denominator() == 0 || other.denominator() == 0)
        return false;
    Integer product = 0;
    return !__builtin_mul_overflow(numerator() / across, other.numerator() / back, &product)
           && !__builtin_mul_overflow(denominator() / back, other.denominator() / across, &product);
}

QString OrloRatio::toString() const
{
    return displayText({mRatio.numerator(), mRatio.denominator()});
}

QString OrloRatio::toStringAbs() const
{
    return displayText(absoluteFraction(mRatio));
}

Rational OrloRatio::getAbsRatio() const
{
    const auto [n, d] = absoluteFraction(mRatio);
    return Rational(n, d);
}

Rational OrloRatio::getRelativeFromAbsoluteRatio() const
{
    const auto [numerator, denominator] = transposition();
    const auto [n, d] = multipliedAndCancelled(mRatio, denominator, numerator);
    return Rational(n, d);
}

OrloRatio& OrloRatio::operator*=(const OrloRatio& other)
{
    mRatio *= other.mRatio;
    return *this;
}

OrloPath* OrloRatio::getPathFromRatio() const
{
    return pathOf<OrloPath>(mRatio);
}

OrloPathUnlimited* OrloRatio::getUnlimitedPathFromRatio() const
{
    return pathOf<OrloPathUnlimited>(mRatio);
}

size_t qHash(const OrloRatio& ratio, size_t seed)
{
    return (seed * 31 + ratio.numerator()) * 31 + ratio.denominator();
}
