#pragma once

#include "model/OrloPathUnlimited.h"
#include "model/OrloRatio.h"
#include "ui/cards/SoundGrape.h"

#include <QColor>
#include <QList>
#include <QString>

class Note;
class OrloBall;

/// Everything that a card has to say, read from the model and the options at one time. A plain
/// value without widgets; two equal ones make two equal cards.
struct CardContents
{
    enum Notation { NoGrape = 0, Coloured = 1, BlackAndWhite = 2 };

    /// By the present transposition and options.
    static CardContents ofBall(const OrloBall& ball);
    /// An absolute ratio.
    static CardContents ofRatio(const OrloRatio& absolute);

    /// The staff has room from one ledger line above to one below; in staff spaces from the top line.
    static constexpr float HIGHEST_POSITION = -1.0F;
    static constexpr float LOWEST_POSITION = 5.0F;
    static constexpr float OCTAVE = 3.5F;

    OrloPathUnlimited path;
    OrloRatio relative;
    OrloRatio absolute;
    float frequency = 0.0F; // Hz

    QString letter;
    QString octave;
    double roundedCents = 0.0;
    QString cents;
    QString ratio;
    QString hertz;
    bool enharmonic = false;
    bool bass = false;
    int accidental = 0;         // -2 to 2
    float staffPosition = 0.0F; // as drawn, after the shift
    int octaveShift = 0;        // octaves that the note is drawn lower than it sounds; below 0: higher

    int notation = NoGrape; // the option as it stands, which may be no Notation
    int colorKey = 1;
    QColor color; // of note and accidental
    SoundGrape grape;
    QList<QColor> grapeColors; // down, then up

    /// Room is made for it even where the notation is unknown.
    bool hasGrape() const { return notation > NoGrape; }
    bool operator==(const CardContents&) const = default;

private:
    void readNote();
    void readDisplay();
    void readGrape();
};
