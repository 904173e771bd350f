#pragma once

#include <QList>
#include <QStringList>

class PdPlayer;
class QLabel;
class QObject;
class QSlider;

/// The sliders of a patch's macros, with the names and defaults that the patch gives them.
/// Macros are counted from 0.
class MacroSliders
{
public:
    /// A slider and a label for each macro.
    MacroSliders(const QList<QSlider*>& sliders, const QList<QLabel*>& labels, PdPlayer* player);

    const QList<QSlider*>& sliders() const { return mSliders; }

    /// Sends the value of one of the sliders to the engine; nothing for another object.
    void queueMacroOf(const QObject* slider) const;
    /// Sends all sliders' values, which a new patch does not know.
    void queueAllMacros() const;
    /// Sends these values, except those that stand for no default.
    void queueValues(const QList<float>& values) const;

    /// Shows the engine's value, 0 to 1. A macro without a slider is ignored.
    void showValue(int macro, float value);
    /// A slider without a name is disabled.
    void showNames(const QStringList& names);

    /// Keeps the defaults and sends them.
    void takeDefaults(const QList<float>& defaults);
    /// Sends the kept defaults again.
    void queueDefaults() const { queueValues(mDefaults); }
    /// What the slider stands at, as "Attack 40%".
    QString valueText(int macro) const;
    /// Where the macro's default lies; where the slider is when the patch gave none.
    int defaultPosition(int macro) const;

private:
    void queueMacro(int macro) const;

    QList<QSlider*> mSliders;
    QList<QLabel*> mLabels;
    PdPlayer* mPlayer;
    QList<float> mDefaults; // may be shorter or longer than the sliders
};
