#include "ui/panel/PrimeToggleButton.h"

#include "app/Accessors.h"
#include "model/Orlo.h"
#include "sound/PdPlayer.h"
#include "ui/hints/ControlHints.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/panel/PrimeStepText.h"

#include <QGraphicsDropShadowEffect>

namespace {

constexpr int FIRST_SWITCHABLE = 4;
constexpr int DARKENED_PRIME = 19;
constexpr int DARKEN_FACTOR = 120;
constexpr int CHECKED_HOVER_FACTOR = 116;
constexpr int UNCHECKED_HOVER_FACTOR = 140;
constexpr double HALO_RADIUS = 10.0;

QString styleFor(const QColor& on, const QColor& off)
{
    const struct
    {
        QString rule;
        QColor color; // invalid: the rule names its own
    } rows[] = {
        {QStringLiteral("PrimeToggleButton:checked { background-color: rgb(%1, %2, %3); }"), on},
        {QStringLiteral("PrimeToggleButton { background-color: rgb(%1, %2, %3); }"), off},
        {QStringLiteral("PrimeToggleButton:checked:hover:!pressed { background-color: rgb(%1, %2, %3); }"),
         on.lighter(CHECKED_HOVER_FACTOR)},
        {QStringLiteral("PrimeToggleButton:!checked:hover:!pressed { background-color: rgb(%1, %2, %3); }"),
         off.lighter(UNCHECKED_HOVER_FACTOR)},
        {QStringLiteral("PrimeToggleButton:pressed, PrimeToggleButton:checked:pressed "
                        "{ background-color: #c4c4bb; }"),
         QColor()},
        {QStringLiteral("PrimeToggleButton:disabled { background-color: rgb(%1, %2, %3); }"), on},
    };
    QString style;
    for (const auto& row : rows) {
        style += row.color.isValid()
                     ? row.rule.arg(row.color.red()).arg(row.color.green()).arg(row.color.blue())
                     : row.rule;
    }
    return style;
}

QString tooltip(int prime, bool canBeSwitched)
{
    if (prime == 1)
        return hints::inLines(hints::text("primeOne"));
    return hints::inLines(
        hints::text(canBeSwitched ? "primeToggle" : "primeFixed").arg(prime).arg(primeStepText(prime)));
}

} // namespace

PrimeToggleButton::PrimeToggleButton(int prime, QWidget* parent)
    : QToolButton(parent)
    , mPrime(prime)
    , mHalo(new QGraphicsDropShadowEffect(this))
    , mEvent(OrloEvent::PrimeEnabledToggle, static_cast<float>(prime))
{
    setFocusPolicy(Qt::NoFocus);
    setText(QString::number(prime));
    if (prime < FIRST_SWITCHABLE) {
        setEnabled(false);
    } else {
        setCheckable(true);
        setChecked(true);
    }
    setToolTip(tooltip(prime, isEnabled()));
    setAccessibleName(QStringLiteral("Prime %1").arg(prime));
    mHalo->setOffset(0.0, 0.0);
    mHalo->setBlurRadius(HALO_RADIUS);
    mHalo->setColor(Qt::white);
    setGraphicsEffect(mHalo);
    mHalo->setEnabled(false);

    const QColor color = primeColor(prime);
    setStyleSheet(styleFor(color, color.darker(PRIME_DISABLED_DIM_FACTOR)));
    connect(this, &QAbstractButton::clicked, this, &PrimeToggleButton::onPrimeToggled);
}

QColor PrimeToggleButton::primeColor(int prime)
{
    const QColor color = app::orlo()->lookupColor(prime);
    return qAbs(prime) == DARKENED_PRIME ? color.darker(DARKEN_FACTOR) : color;
}

void PrimeToggleButton::onPrimeToggled()
{
    if (mPrime >= FIRST_SWITCHABLE)
        app::player()->queueEventGui(&mEvent);
}

void PrimeToggleButton::setHaloVisible(bool visible)
{
    mHalo->setEnabled(visible);
}
