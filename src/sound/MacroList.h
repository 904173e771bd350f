#pragma once

#include <QList>
#include <QStringList>

/// The macros that a patch names, as in "Level(0.8):Attack(0.02):Colour". A pure reading of the
/// text: any text gives a list.
struct MacroList
{
    /// The default of a name that gives none: the macro keeps its slider's value.
    static constexpr float NO_DEFAULT = -1.0F;

    /// Whether a default is one: it is not at or below -0.5.
    static bool isDefault(float value) { return value > -0.5F; }

    QStringList names;
    QList<float> defaults; // one for each name

    static MacroList parse(const QString& text);
};
