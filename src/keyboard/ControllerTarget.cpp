#include "keyboard/ControllerTarget.h"

#include "model/OrloConstants.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int MACROS = 8;
constexpr int CHORDS = 20;

struct Name
{
    ControllerTarget::Kind kind;
    const char* id; // %1 is the number, here and below
    const char* title;
};
constexpr Name NAMES[] = {
    {ControllerTarget::None, "", "Nothing"},
    {ControllerTarget::Macro, "macro%1", "Patch parameter %1"},
    {ControllerTarget::Volume, "volume", "Master volume"},
    {ControllerTarget::Glissando, "glissando", "Glissando"},
    {ControllerTarget::FineGlissando, "fineGlissando", "Fine glissando"},
    {ControllerTarget::TransposeUp, "up%1", "Transpose up by %1"},
    {ControllerTarget::TransposeDown, "down%1", "Transpose down by %1"},
    {ControllerTarget::Chord, "chord%1", "Chord %1"},
    {ControllerTarget::PatchUp, "patchUp", "Next patch"},
    {ControllerTarget::PatchDown, "patchDown", "Previous patch"},
};

QString withNumber(const char* text, int number)
{
    const QString whole = QString::fromLatin1(text);
    return number > 0 ? whole.arg(number) : whole;
}

const Name& nameOf(ControllerTarget::Kind kind)
{
    return *std::find_if(std::begin(NAMES), std::end(NAMES),
                         [kind](const Name& name) { return name.kind == kind; });
}

QList<ControllerTarget> makeAll()
{
    QList<ControllerTarget> all;
    for (int macro = 1; macro <= MACROS; ++macro)
        all.append({ControllerTarget::Macro, macro});
    for (const auto kind :
         {ControllerTarget::Volume, ControllerTarget::Glissando, ControllerTarget::FineGlissando})
        all.append({kind, 0});
    for (const int prime : OrloConstants::PRIMES) {
        if (prime == 1)
            continue;
        all.append({ControllerTarget::TransposeUp, prime});
        all.append({ControllerTarget::TransposeDown, prime});
    }
    for (int chord = 1; chord <= CHORDS; ++chord)
        all.append({ControllerTarget::Chord, chord});
    all.append({ControllerTarget::PatchUp, 0});
    all.append({ControllerTarget::PatchDown, 0});
    return all;
}

} // namespace

QString ControllerTarget::title() const
{
    return withNumber(nameOf(kind).title, number);
}

QString ControllerTarget::id() const
{
    return withNumber(nameOf(kind).id, number);
}

ControllerTarget ControllerTarget::fromId(const QString& id)
{
    const QList<ControllerTarget>& targets = all();
    const auto found =
        std::find_if(targets.begin(), targets.end(), [&](const auto& each) { return each.id() == id; });
    return found == targets.end() ? ControllerTarget() : *found;
}

const QList<ControllerTarget>& ControllerTarget::all()
{
    static const QList<ControllerTarget> targets = makeAll();
    return targets;
}
