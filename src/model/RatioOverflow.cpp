#include "model/RatioOverflow.h"

#include "model/OrloRatio.h"

#include <QDebug>

#include <numeric>

namespace {

using OrloConstants::Rational;

constexpr float TOLERANCE = 0x1.4f8b58p-17F; // 1e-05

double value(const Rational& ratio)
{
    return static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator());
}

} // namespace

bool ratiooverflow::productFits(const OrloRatio& a, const OrloRatio& b)
{
    const auto across = std::gcd(a.numerator(), b.denominator());
    const auto back = std::gcd(b.numerator(), a.denominator());
    if (across == 0 || back == 0 || a.denominator() == 0 || b.denominator() == 0)
        return false;
    unsigned long long product = 0;
    return !__builtin_mul_overflow(a.numerator() / across, b.numerator() / back, &product)
           && !__builtin_mul_overflow(a.denominator() / back, b.denominator() / across, &product);
}

bool ratiooverflow::productIsClose(const OrloRatio& a, const OrloRatio& b)
{
    Rational test = a.ratio();
    test *= b.ratio();
    const double testProduct = value(test);
    const double realProduct = value(a.ratio()) * value(b.ratio());
    const auto difference = static_cast<float>(qAbs(testProduct - realProduct));
    if (!(difference > TOLERANCE)) // also for what is no number
        return true;
    qDebug().noquote() << QStringLiteral("canMultiply fail on %1 * %2:\n  test product: %3, real product: %4")
                              .arg(a.toString(), b.toString())
                              .arg(testProduct)
                              .arg(realProduct);
    return false;
}
