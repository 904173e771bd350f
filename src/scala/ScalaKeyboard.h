#pragma once

#include "scala/ScalaError.h"
#include "scala/ScalaPitch.h"

#include <QList>

#include <optional>

class QIODevice;
class ScalaScale;

/// Which degree of a scale each MIDI key plays, as in a file ".kbm". [any]
struct ScalaKeyboard
{
    static constexpr int MAX_SIZE = 4096; // keys until the pattern repeats
    static constexpr int MAX_NUMBER = 100000;
    static constexpr double MAX_FREQUENCY = 1e6; // Hz

    int first = 0; // keys outside of first to last play nothing
    int last = 127;
    int middle = 60;                        // where the pattern begins
    int referenceKey = 69;                  // which has the reference frequency
    double referenceFrequency = 440.0;      // Hz
    int octaveDegree = 0;                   // by which the pattern repeats; 0: by the scale's period
    QList<std::optional<int>> degrees = {}; // from the middle key on; nothing for a key that plays nothing.
                                            // Empty: each key is one degree above the one below it

    /// As ScalaScale::read(). Degrees left out at the end play nothing.
    static std::optional<ScalaKeyboard> read(QIODevice& device, ScalaError& error);
    static std::optional<ScalaKeyboard> fromFile(const QString& path, ScalaError& error);

    /// Above the scale's 1/1. The reference frequency takes no part in it. Nothing for a key without a pitch.
    std::optional<ScalaPitch> pitchOf(int key, const ScalaScale& scale) const;

    bool operator==(const ScalaKeyboard& other) const = default;
};
