#include "ui/cards/CardContents.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/Note.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "ui/cards/CardWidget.h"
#include "ui/lattice/PitchHeight.h"
#include "ui/cards/PitchTexts.h"

#include <memory>

CardContents CardContents::ofBall(const OrloBall& ball)
{
    const Orlo* orlo = app::orlo();
    CardContents contents;
    contents.path = OrloPathUnlimited(&ball.path());
    contents.relative = contents.path.toRatio();
    OrloRatio whole(orlo->transposition());
    whole *= contents.relative;
    contents.frequency = orlo->baseFrequency() * pitch::quotient(whole);
    contents.absolute = pitch::absoluteOf(contents.relative);
    contents.readNote();
    contents.readDisplay();
    return contents;
}

CardContents CardContents::ofRatio(const OrloRatio& absolute)
{
    CardContents contents;
    contents.absolute = absolute;
    contents.frequency = pitch::quotient(absolute) * app::orlo()->baseFrequency();
    contents.relative = pitch::relativeOf(absolute);
    const std::unique_ptr<OrloPathUnlimited> path(contents.relative.getUnlimitedPathFromRatio());
    contents.path = *path;
    contents.readNote();
    contents.readDisplay();
    return contents;
}

void CardContents::readNote()
{
    const Note note = CardWidget::getNoteForPath(&path, frequency);
    letter = note.noteLetter();
    octave = QString::number(note.octave());
    enharmonic = note.enharmonic();
    accidental = note.accidental();
    bass = note.octave() < 4;
    roundedCents = texts::roundedCents(note.cents());
    cents = texts::centsText(roundedCents, app::settings()->centsShowDecimals);

    staffPosition = CardWidget::getStaffLineForNote(bass, note);
    while (staffPosition < HIGHEST_POSITION) {
        staffPosition += OCTAVE;
        ++octaveShift;
    }
    while (staffPosition > LOWEST_POSITION) {
        staffPosition -= OCTAVE;
        --octaveShift;
    }
}

void CardContents::readDisplay()
{
    const Settings* settings = app::settings();
    notation = settings->soundGrapeNotation;
    ratio = (settings->absRelView == 0 ? relative : absolute).toString();
    const int decimals = texts::frequencyDecimals(frequency) - (hasGrape() ? 1 : 0);
    hertz = QString::number(static_cast<double>(frequency), 'f', decimals) + QStringLiteral(" Hz");

    // With the soundgrape the arrows carry the colours, and the note keeps the central one.
    colorKey = hasGrape() ? 1 : CardWidget::findHighestPrime(&path);
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
