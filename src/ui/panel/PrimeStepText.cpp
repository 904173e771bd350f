#include "ui/panel/PrimeStepText.h"

#include "model/OrloConstants.h"

#include <QString>

#include <cmath>

QString primeStepText(int prime)
{
    const struct
    {
        int prime;
        const char* name;
    } named[] = {
        {2, "an octave of "}, {3, "a fifth of "}, {5, "a major third of "}, {7, "a natural seventh of "}};
    const OrloConstants::Rational& ratio = OrloConstants::PRIME_RATIONALS.at(static_cast<size_t>(prime));
    QString name;
    for (const auto& each : named) {
        if (each.prime == prime)
            name = QString::fromLatin1(each.name);
    }
    const double quotient = static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator());
    return QStringLiteral("%1/%2, %3%4 cents")
        .arg(ratio.numerator())
        .arg(ratio.denominator())
        .arg(name)
        .arg(qRound(1200.0 * std::log2(quotient)));
}
