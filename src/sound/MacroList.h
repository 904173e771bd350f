#pragma once

#include <QList>
#include <QStringList>

/// The macros that a patch names, as in "Level(0.8):Attack(0.02):Colour". A pure reading of the
/// text: any text gives a list.
struct MacroList
{
    /// Stands for the default of a name without one: that macro keeps its slider's value.
    static constexpr float NO_DEFAULT = -1.0F;

    /// [any] False for NO_DEFAULT: a value at or below -0.5 is no default.
    static bool isDefault(float value) { return value > -0.5F; }

    QStringList names;
    QList<float> defaults; // one for each name

    /// [any] Allocates.
    static MacroList parse(const QString& text);
};
