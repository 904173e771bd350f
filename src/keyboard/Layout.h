#pragma once

#include "model/OrloPathUnlimited.h"
#include "model/OrloRatio.h"
#include "scala/ScalaKeyboard.h"
#include "scala/ScalaScale.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

/// Which pitch each key plays, by one rule. A plain value. Pitches are relative to the lattice's 1/1 and move
/// with its transposition. Channels count from 1, keys from 0, as players count them. [any]
///
/// All values are there whatever the kind, so that a change of kind loses none; the file keeps those of the
/// kind.
struct Layout
{
    enum class Kind { Learned, Twelve, Generators, Scala, Harmonics, Subharmonics };
    static constexpr int KINDS = 6;

    static constexpr int CHANNELS = 16;
    static constexpr int KEYS = 128;

    /// Keys that were taught one by one.
    struct Learned
    {
        /// The channel of a key that counts on every channel, behind one of its own.
        static constexpr int ANY_CHANNEL = 0;
        using Place = std::pair<int, int>; // channel, key

        QMap<Place, OrloRatio> keys = {};

        bool operator==(const Learned& other) const = default;
    };

    /// Simple ratios near the twelve equal steps (TwelveSteps.h).
    struct Twelve
    {
        static constexpr double MAX_WINDOW = 50.0;

        int primeLimit = 5;   // one of the primes from 2 to 31
        double window = 25.0; // cents to either side, from 0

        bool operator==(const Twelve& other) const = default;
    };

    /// Each key one path further than the one below it, each row another path.
    struct Generators
    {
        enum class Rows { OfKeys, OfChannels };
        static constexpr int MAX_ROW_LENGTH = 128;

        OrloPathUnlimited along{QStringLiteral("/3/3/-2")};
        OrloPathUnlimited across{QStringLiteral("/3")};
        Rows rows = Rows::OfKeys;
        int rowLength = 12;  // keys; the next key begins a new row. For rows of keys
        int rootChannel = 1; // the row of 1/1. For rows of channels

        bool operator==(const Generators& other) const = default;
    };

    /// Without a keyboard the root key plays 1/1, and each key one degree of the scale more. With one, 1/1 of
    /// the scale is 1/1 of the lattice all the same: the keyboard's frequency is not used.
    struct Scala
    {
        ScalaScale scale = {};
        std::optional<ScalaKeyboard> keyboard = std::nullopt;

        bool operator==(const Scala& other) const = default;
    };

    /// Harmonics: the root key plays `first` / 2^octaves and each key above it the next number. Subharmonics:
    /// the root key plays 2^octaves / `first` and each key below it the next number, so that pitch rises with
    /// the keys. Numbers below 1 have no key.
    struct Harmonics
    {
        /// What becomes of a number with a prime factor beyond 31, which the lattice does not have.
        enum class Beyond31 { Skipped, Silent };
        static constexpr int MAX_FIRST = 1024;
        static constexpr int MAX_OCTAVES = 10;

        int first = 1;
        int octaves = 0; // the fundamental below 1/1, of subharmonics above it
        Beyond31 beyond31 = Beyond31::Skipped;

        bool operator==(const Harmonics& other) const = default;
    };

    QString name = {};
    bool enabled = true;
    QStringList inputs = {}; // by name; empty: all
    int firstChannel = 1;
    int lastChannel = CHANNELS;
    Kind kind = Kind::Learned;
    int rootKey = 69; // plays 1/1. Not for learned keys, nor for a Scala keyboard

    Learned learned = {};
    Twelve twelve = {};
    Generators generators = {};
    Scala scala = {};
    Harmonics harmonics = {}; // subharmonics too

    /// Whether it is switched on for this input.
    bool isFor(const QString& input) const;
    /// For the player: "Twelve steps".
    static QString kindText(Kind kind);

    bool operator==(const Layout& other) const = default;
};
