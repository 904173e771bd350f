#include "ui/cards/CardTip.h"

#include "ui/cards/CardContents.h"
#include "ui/cards/CentsText.h"
#include "ui/cards/FrequencyDecimals.h"

#include <QStringList>

#include <cmath>

namespace {

constexpr int CENTS_DECIMALS = 2;
constexpr double INAUDIBLE_CENTS = 0.05; // float arithmetic on two ways differs by less

QString hertz(float frequency)
{
    const auto exact = static_cast<double>(frequency);
    return QString::number(exact, 'f', texts::frequencyDecimals(exact)) + QStringLiteral(" Hz");
}

QString cents(double value)
{
    return texts::centsText(value, CENTS_DECIMALS) + QStringLiteral(" cents");
}

} // namespace

QString texts::cardTip(const CardContents& contents, std::optional<float> heard)
{
    const QChar sign = contents.accidental < 0 ? u'b' : u'#';
    QStringList lines{contents.letter + QString(qAbs(contents.accidental), sign) + contents.octave + u' '
                          + cents(contents.roundedCents),
                      contents.ratio, hertz(contents.frequency)};
    if (contents.heji)
        lines.append(QStringLiteral("Helmholtz-Ellis: ") + contents.heji->text());
    if (heard && *heard > 0.0F && contents.frequency > 0.0F) {
        const double apart =
            1200.0 * std::log2(static_cast<double>(*heard) / static_cast<double>(contents.frequency));
        if (std::abs(apart) > INAUDIBLE_CENTS)
            lines.append(QStringLiteral("sounds at %1, %2").arg(hertz(*heard), cents(apart)));
    }
    return lines.join(u'\n');
}
