#pragma once

#include "model/OrloRatio.h"

#include <QList>
#include <QStringList>

#include <optional>

class Orlo;
class ScalaScale;
struct ScalaKeyboard;

/// The pitches of a Scala file as a chord of the lattice. [gui]
struct ScalaImport
{
    static constexpr int MAX_NOTES = 128; // as many as sound at a time

    /// Absolute by the present transposition, ascending, each once. 1/1 is among them, and the period unless
    /// it is the octave. With a keyboard map these are the degrees that it names.
    QList<OrloRatio> ratios;
    /// What is not among them, each with its line and why: "Line 7: 701.955 cents is no ratio within 64
    /// bits."
    QStringList leftOut;

    static ScalaImport of(const ScalaScale& scale, const std::optional<ScalaKeyboard>& keyboard,
                          const Orlo& orlo);
};
