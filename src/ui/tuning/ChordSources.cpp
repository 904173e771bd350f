#include "ui/tuning/ChordSources.h"

#include "memory/ChordLine.h"
#include "memory/StoreAndRecall.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "sound/PdPlayer.h"
#include "ui/tuning/SlotTexts.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 MOST_BYTES = qint64{1} << 20U; // of a chord file; twenty full chords have some 50 KB

/// A chord file may hold 0/1 or a number below 0, which comes in as one beyond 32 bits.
bool isPitch(const OrloRatio& ratio)
{
    constexpr unsigned long long most = std::numeric_limits<int>::max();
    return ratio.numerator() > 0 && ratio.numerator() <= most && ratio.denominator() <= most;
}

} // namespace

ChordSources::ChordSources(const PdPlayer& player, const StoreAndRecall& memory, const Orlo& orlo)
    : mPlayer(player)
    , mMemory(memory)
    , mOrlo(orlo)
{
}

TuningSet ChordSources::setOf(const QString& title, const QList<OrloRatio>& ratios) const
{
    TuningSet set{.title = title, .oneOne = static_cast<double>(mOrlo.baseFrequency()), .ratios = {}};
    for (const OrloRatio& ratio : ratios) {
        if (ratio.numerator() > 0 && !set.ratios.contains(ratio))
            set.ratios.append(ratio);
    }
    return set;
}

TuningSet ChordSources::sounding() const
{
    return setOf(QStringLiteral("Chord"), mPlayer.getAllSoundingRatios());
}

TuningSet ChordSources::slot(int slot) const
{
    return setOf(slottexts::name(slot), mMemory.chords().value(slot));
}

/// Not by SaveAndLoad, which notes a damaged file to be set aside.
TuningSet ChordSources::preset(const QString& path, QString& reason) const
{
    const QFileInfo info(path);
    QFile file(path);
    QList<OrloRatio> ratios;
    if (!info.isFile()) {
        reason = QStringLiteral("This preset is not a file.");
    } else if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        reason = file.errorString();
    } else {
        const QStringList lines = QString::fromLatin1(file.read(MOST_BYTES)).split(u'\n');
        for (int slot = 1; slot <= StoreAndRecall::LAST_SLOT && slot <= lines.size(); ++slot) {
            chordline::Reading reading;
            if (!chordline::isEmptySlot(lines[slot - 1]))
                ratios += chordline::read(lines[slot - 1], slot, reading);
        }
        ratios.removeIf([](const OrloRatio& ratio) { return !isPitch(ratio); });
        if (ratios.isEmpty())
            reason = QStringLiteral("This preset holds no chord.");
    }
    return setOf(info.completeBaseName(), ratios);
}

TuningSet ChordSources::enabledBalls() const
{
    QList<OrloRatio> ratios;
    const auto& balls = mOrlo.ballMap();
    for (auto at = balls.begin(); at != balls.end(); ++at) {
        if (at.value()->isEnabled())
            ratios.append(at.key());
    }
    std::ranges::sort(ratios, [](const OrloRatio& a, const OrloRatio& b) { return a.ratio() < b.ratio(); });
    return setOf(QStringLiteral("Lattice"), ratios);
}

QList<int> ChordSources::fullSlots() const
{
    QList<int> full;
    for (int slot = 1; slot <= StoreAndRecall::LAST_SLOT; ++slot) {
        if (!mMemory.chords().value(slot).isEmpty())
            full.append(slot);
    }
    return full;
}
