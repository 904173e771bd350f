#include "ui/window/Readout.h"

#include "model/Orlo.h"
#include "ui/cards/FrequencyDecimals.h"

#include <QLabel>

namespace {

QString frequencyText(float frequency)
{
    return QString::number(static_cast<double>(frequency), 'f', texts::frequencyDecimals(frequency));
}

} // namespace

Readout::Readout(QLabel* steps, QLabel* frequencies, const Orlo* orlo)
    : mSteps(steps)
    , mFrequencies(frequencies)
    , mOrlo(orlo)
{
}

void Readout::update()
{
    showSteps();
    showFrequencies();
}

void Readout::showSteps()
{
    QString steps;
    for (const int step : mOrlo->transposeSteps())
        steps += u'/' + QString::number(step);
    if (steps.isEmpty())
        steps = QStringLiteral("/");
    const QString prefix = QStringLiteral("Shifted prime steps: ");
    const QFontMetrics metrics(mSteps->window()->font());
    const int room = mSteps->width() - metrics.horizontalAdvance(prefix);
    mSteps->setText(QStringLiteral("%1%2").arg(prefix, metrics.elidedText(steps, Qt::ElideMiddle, room)));
}

void Readout::showFrequencies()
{
    const OrloRatio& transposition = mOrlo->transposition();
    const float base = mOrlo->baseFrequency();
    const float central = static_cast<float>(transposition.numerator())
                          / static_cast<float>(transposition.denominator()) * base;
    if (central == base) {
        mFrequencies->setText(
            QStringLiteral("Frequency of central node [= 1/1 Frequency]: %1 Hz").arg(frequencyText(central)));
    } else {
        mFrequencies->setText(QStringLiteral("Frequency of central node: %1 Hz        1/1 Frequency: %2 Hz")
                                  .arg(frequencyText(central), frequencyText(base)));
    }
}
