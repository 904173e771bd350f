#pragma once

#include "model/OrloPathUnlimited.h"
#include "model/OrloRatio.h"
#include "notation/HejiSpelling.h"
#include "ui/cards/SoundGrape.h"
#include "ui/cards/StaffPosition.h"

#include <QColor>
#include <QList>
#include <QString>

#include <optional>

class Note;
class OrloBall;

/// Everything that a card shows, read from the model and the options at one time. A plain value without
/// widgets; two cards with equal contents look the same.
struct CardContents
{
    enum Notation { NoGrape = 0, Coloured = 1, BlackAndWhite = 2 };

    /// By the present transposition and options.
    static CardContents ofBall(const OrloBall& ball);
    /// An absolute ratio.
    static CardContents ofRatio(const OrloRatio& absolute);
    /// Whether the options ask for it: the soundgrape goes before it.
    static bool isHejiWanted();
    /// The staff in Helmholtz-Ellis notation instead; the printed name stays.
    void writeStaffInHeji();

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
    int accidental = 0; // of the name; -2 to 2
    bool bass = false;
    StaffPosition staff;
    std::optional<HejiSpelling> heji; // null: the staff shows the note and the accidental of the name

    int notation = NoGrape; // the option as it stands, which may be another number
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
