#include "files/SetAside.h"
#include "fuzz/Fuzz.h"
#include "memory/ChordFileError.h"
#include "memory/SaveAndLoad.h"

#include <limits>
#include <numeric>

namespace {

using Chords = SaveAndLoad::Chords;

constexpr int SETS = 21;

Chords readFrom(const QString& path, bool* threw = nullptr)
{
    Chords chords;
    QDir file(path);
    try {
        SaveAndLoad().getDataFromFile(&file, &chords, SETS);
    } catch (const ChordFileError&) {
        if (threw)
            *threw = true;
    }
    return chords;
}

/// What comes back of a table that was written: a line that begins with a 0 is empty, a numerator beyond 32
/// bits counts as 0, a denominator beyond them cuts the line, and the whole table when it comes last.
Chords comesBack(const Chords& chords)
{
    constexpr unsigned long long most = std::numeric_limits<int>::max();
    Chords back;
    bool good = true;
    for (int slot = 1; slot < SETS; ++slot) {
        const QList<OrloRatio> chord = chords.value(slot);
        if (chord.isEmpty() || chord[0].numerator() == 0)
            continue;
        back[slot].clear();
        for (const OrloRatio& ratio : chord) {
            good = ratio.denominator() <= most;
            if (!good)
                break;
            back[slot].append(ratio.numerator() <= most ? ratio : OrloRatio(0, 1));
        }
    }
    return good ? back : Chords();
}

bool areSame(const Chords& a, const Chords& b)
{
    for (int slot = 0; slot <= SETS; ++slot) {
        if (a.contains(slot) != b.contains(slot) || a.value(slot) != b.value(slot))
            return false;
    }
    return a.size() == b.size();
}

} // namespace

FUZZ_TARGET(chord_file)
{
    const TestHome& home = fuzz::cleanHome();
    const QString path = home.path(QStringLiteral("x.btoc"));
    QDir file(path);
    home.write(path, input);
    Chords chords = readFrom(path);
    qsizetype ratios = 0;
    for (auto chord = chords.begin(); chord != chords.end(); ++chord) {
        FUZZ_REQUIRE(chord.key() >= 1 && chord.key() <= SETS);
        ratios += chord->size();
        for (const OrloRatio& ratio : *chord)
            FUZZ_REQUIRE(ratio.denominator() > 0 && std::gcd(ratio.numerator(), ratio.denominator()) == 1);
    }
    FUZZ_REQUIRE(3 * ratios <= input.size() + 1); // "/6" is one, and the last needs no blank

    const bool isKept = SetAside::isMarked(path);
    SetAside::copyMarked(path);
    FUZZ_REQUIRE(SaveAndLoad().saveDataToFile(&file, &chords, SETS));
    bool threw = false;
    FUZZ_REQUIRE(areSame(readFrom(path, &threw), comesBack(chords)));
    FUZZ_REQUIRE(!threw);
    const Chords again = readFrom(path);
    for (int slot = 1; slot <= SETS; ++slot)
        FUZZ_REQUIRE(isKept || again.value(slot) == chords.value(slot)); // nothing is lost without a copy
    SetAside::copyMarked(path);
}
