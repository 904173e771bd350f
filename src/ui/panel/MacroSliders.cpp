#include "ui/panel/MacroSliders.h"

#include "sound/MacroList.h"
#include "sound/PdPlayer.h"
#include "ui/hints/ControlHints.h"
#include "ui/panel/SliderFraction.h"

#include <QLabel>
#include <QSlider>

namespace {

OrloEvent::Type eventOf(qsizetype macro)
{
    return static_cast<OrloEvent::Type>(OrloEvent::Macro1Set + macro);
}

QString capitalised(const QString& name)
{
    return name.left(1).toUpper() + name.mid(1).toLower();
}

} // namespace

MacroSliders::MacroSliders(const QList<QSlider*>& sliders, const QList<QLabel*>& labels, PdPlayer* player)
    : mSliders(sliders)
    , mLabels(labels)
    , mPlayer(player)
{
}

void MacroSliders::queueMacro(int macro) const
{
    mPlayer->queueGui(eventOf(macro), sliderFraction(mSliders[macro]));
}

void MacroSliders::queueMacroOf(const QObject* slider) const
{
    for (int macro = 0; macro < mSliders.size(); ++macro) {
        if (mSliders[macro] == slider)
            queueMacro(macro);
    }
}

void MacroSliders::queueAllMacros() const
{
    for (int macro = 0; macro < mSliders.size(); ++macro)
        queueMacro(macro);
}

void MacroSliders::queueValues(const QList<float>& values) const
{
    const auto count = qMin(values.size(), mSliders.size());
    for (qsizetype macro = 0; macro < count; ++macro) {
        if (MacroList::isDefault(values[macro]))
            mPlayer->queueGui(eventOf(macro), values[macro]);
    }
}

void MacroSliders::showValue(int macro, float value)
{
    if (macro >= 0 && macro < mSliders.size())
        setSliderFraction(mSliders[macro], value);
}

void MacroSliders::showNames(const QStringList& names)
{
    for (qsizetype macro = 0; macro < mSliders.size(); ++macro) {
        const bool used = macro < names.size();
        const QString name = used ? capitalised(names[macro]) : QStringLiteral("Unused");
        mLabels[macro]->setText(name);
        mLabels[macro]->setEnabled(used);
        mSliders[macro]->setEnabled(used);
        mSliders[macro]->setAccessibleName(name);
        mSliders[macro]->setToolTip(hints::inLines(hints::text(used ? "macroSlider" : "unusedMacroSlider")));
    }
}

void MacroSliders::takeDefaults(const QList<float>& defaults)
{
    queueValues(defaults);
    mDefaults = defaults;
}

QString MacroSliders::valueText(int macro) const
{
    return QStringLiteral("%1 %2").arg(mLabels[macro]->text(), percentText(mSliders[macro]));
}

int MacroSliders::defaultPosition(int macro) const
{
    const QSlider* slider = mSliders[macro];
    if (macro >= mDefaults.size() || !MacroList::isDefault(mDefaults[macro]))
        return slider->value();
    return static_cast<int>(static_cast<float>(slider->maximum()) * mDefaults[macro]);
}
