#include "ui/cards/CardContents.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/AbsoluteRatio.h"
#include "model/Note.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "ui/cards/CentsText.h"
#include "ui/cards/FrequencyDecimals.h"
#include "ui/cards/HighestPrimeColor.h"

#include <memory>

CardContents CardContents::ofBall(const OrloBall& ball)
{
    const Orlo* orlo = app::orlo();
    CardContents contents;
    contents.path = OrloPathUnlimited(&ball.path());
    contents.relative = contents.path.toRatio();
    OrloRatio whole(orlo->transposition());
    whole *= contents.relative;
    contents.frequency = orlo->baseFrequency() * ratios::quotient(whole);
    contents.absolute = ratios::absoluteOf(contents.relative);
    contents.readNote();
    contents.readDisplay();
    return contents;
}

CardContents CardContents::ofRatio(const OrloRatio& absolute)
{
    CardContents contents;
    contents.absolute = absolute;
    contents.frequency = ratios::quotient(absolute) * app::orlo()->baseFrequency();
    contents.relative = ratios::relativeOf(absolute);
    const std::unique_ptr<OrloPathUnlimited> path(contents.relative.getUnlimitedPathFromRatio());
    contents.path = *path;
    contents.readNote();
    contents.readDisplay();
    return contents;
}

bool CardContents::isHejiWanted()
{
    const Settings* settings = app::settings();
    return settings->helmholtzEllis && settings->soundGrapeNotation <= NoGrape;
}

void CardContents::writeStaffInHeji()
{
    const Orlo* orlo = app::orlo();
    heji = HejiSpelling::of(Note(static_cast<float>(orlo->baseFrequency())),
                            orlo->transposeSteps() + path.toList());
    bass = StaffPosition::isBass(*heji);
    staff = StaffPosition::of(*heji);
}

void CardContents::readNote()
{
    const Note note = Note::getNoteForPath(&path, frequency);
    letter = note.noteLetter();
    octave = QString::number(note.octave());
    enharmonic = note.enharmonic();
    accidental = note.accidental();
    bass = StaffPosition::isBass(note);
    staff = StaffPosition::of(note);
    roundedCents = texts::roundedCents(note.cents());
    cents = texts::centsText(roundedCents, app::settings()->centsShowDecimals);
}

void CardContents::readDisplay()
{
    const Settings* settings = app::settings();
    notation = settings->soundGrapeNotation;
    ratio = (settings->absRelView == 0 ? relative : absolute).toString();
    const int decimals = texts::frequencyDecimals(static_cast<double>(frequency)) - (hasGrape() ? 1 : 0);
    hertz = QString::number(static_cast<double>(frequency), 'f', decimals) + QStringLiteral(" Hz");

    // With the soundgrape the arrows carry the colours, and the note keeps the central one.
    colorKey = hasGrape() ? 1 : highestprime::colorKey(path);
    color = app::orlo()->lookupColor(colorKey);
    if (notation != NoGrape)
        readGrape();
}

void CardContents::readGrape()
{
    const Orlo* orlo = app::orlo();
    QList<int> steps = path.toList();
    if (app::settings()->absRelView != 0)
        steps += orlo->transposeSteps();
    grape = SoundGrape::fromSteps(steps);
    for (const QList<int>& primes : {grape.down, grape.up}) {
        for (const int prime : primes)
            grapeColors.append(orlo->lookupColor(prime));
    }
}
