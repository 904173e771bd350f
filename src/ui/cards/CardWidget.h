#pragma once

#include "model/Note.h"
#include "model/OrloPathUnlimited.h"
#include "model/OrloRatio.h"
#include "ui/cards/CardContents.h"
#include "ui/cards/HejiSigns.h"
#include "ui/cards/SoundGrape.h"

#include <QColor>
#include <QFrame>
#include <QLine>
#include <QList>

class CardGraphic;
class CardLabel;
class CardStackTwoWidget;
class CardStackWidget;
class OrloBall;
class SvgLoader;

/// The panel that names one sounding pitch: a staff with clef, accidental and note, the name, the
/// deviation in cents, the ratio, the frequency, and the soundgrape if the options ask for it.
///
/// A card shows the state at the time when it was filled; its stack fills it again when the transposition
/// or an option changes. Building the parts costs ten times as much as filling them, so a chord that
/// moves takes its cards along. The layout is made in layOut() and nowhere else: when the card gets
/// its size, its contents or another style, and while it is not shown, not before it is.
///
/// Draws its child widgets itself: Qt would take longer to visit them than they take to draw.
class CardWidget : public QFrame
{
    Q_OBJECT

public:
    /// The card of a ball, which outlives it.
    CardWidget(const OrloBall* ball, CardStackWidget* stack);
    /// The card of a pitch without a ball, by its absolute ratio.
    CardWidget(const OrloRatio* ratio, CardStackTwoWidget* stack);
    ~CardWidget() override;

    /// Names the pitch at the end of this path; `frequency` in Hz.
    static Note getNoteForPath(const OrloPathUnlimited* path, float frequency);
    /// Puts the prime colour of `key` in the place of black in a graphic's text.
    static void changeSvgColor(QByteArray* svg, int key);
    /// Calls highestprime::colorKey.
    static int findHighestPrime(const OrloPathUnlimited* path);
    /// Calls StaffPosition::unshifted.
    static float getStaffLineForNote(bool bass, const Note& note);

    /// 0 for the topmost.
    void setCardHirarchy(int level) { mHierarchy = level; }
    void decreaseCardHirarchy() { ++mHierarchy; }
    int cardHirarchy() const { return mHierarchy; }

    /// Fills the card from the present transposition and options.
    void refill();
    /// The same for another pitch of its stack, as a card that was just built.
    void refillFor(const OrloBall* ball);
    void refillFor(const OrloRatio& ratio);

    /// Toggles the note.
    void toggleRatioForCard() const;

    /// Before the note head; none in other notations.
    const HejiSigns& signs() const { return mSigns; }
    /// As drawn, after the octave shift.
    float staffPosition() const { return mContents.staff.position; }
    /// Whole octaves that the note is drawn lower than it sounds; below 0: higher.
    int octaveShift() const { return mContents.staff.octaveShift; }
    const OrloRatio& relativeRatio() const { return mContents.relative; }
    const OrloRatio& absoluteRatio() const { return mContents.absolute; }
    /// Hz.
    float frequency() const { return mContents.frequency; }
    bool isAtStackTwo() const { return mAtStackTwo; }

    /// The rows of the card that no other card of the stack covers, from `top` up to `bottom`. When name,
    /// cents or ratio are not within them, these three stand there in one line instead of what is left
    /// of the whole.
    void setUncoveredRows(int top, int bottom);
    bool isShortened() const;

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr int ACCIDENTAL_GAP = 3; // from accidental to note, pixels

    void init();
    void fill();
    CardContents readContents() const;
    const QByteArray* accidentalGraphic() const;
    bool showsAccidental() const { return hasAccidental() && !mContents.heji; } // on the staff
    bool hasAccidental() const { return mContents.accidental != 0; }
    CardLabel* addLabel(const char* name);
    CardGraphic* addGraphic();
    QByteArray recoloured(QByteArray svg) const;

    void layOut();
    void layOutStaff(const QRect& area);
    HejiSigns hejiSigns(const QRect& area, int room) const;
    void moveCentsBesideSigns(int right);
    void layOutCents(const QRect& area);
    void layOutName(const QRect& area);
    void layOutRatio(const QRect& area);
    void layOutOctaveShift();
    void layOutGrape();
    void addArrows(const QList<int>& primes, SoundGrape::Direction direction);
    QLine layOutPrimes(const QList<int>& primes, SoundGrape::Direction direction, bool show);

    void followStyle();
    QPixmap paper();
    QPixmap wholePicture();
    void drawLines(QPainter& painter) const;
    QPointF signsOrigin() const;
    void drawHejiSigns(QPainter& painter) const;
    void drawSoundGrapeBW(QPainter& painter) const;
    void drawParts(QPainter& painter) const;
    void drawShortened(QPainter& painter);
    void drawShortLine(QPainter& painter) const;
    void drawShortRatio(QPainter& painter, int x, int baseline) const;
    void showTip(QPoint globalPosition);

    const bool mAtStackTwo;
    const OrloBall* mBall = nullptr; // null: at the second stack
    OrloRatio mRatio;                // what a card of the second stack was built for
    SvgLoader* const mLoader;
    CardContents mContents;
    int mHierarchy = 0;
    bool mLayoutIsOld = false;
    int mUncoveredTop = 0;
    int mUncoveredBottom = QWIDGETSIZE_MAX;

    QList<CardGraphic*> mGraphics; // child widgets, in the order of drawing, and the texts above them
    QList<CardLabel*> mLabels;
    CardGraphic* mClef = nullptr;
    CardGraphic* mNote = nullptr;
    CardGraphic* mAccidental = nullptr;      // on the staff
    CardGraphic* mPlainAccidental = nullptr; // in the name
    CardLabel* mNoteLabel = nullptr;
    CardLabel* mOctaveLabel = nullptr;
    CardLabel* mCentsLabel = nullptr;
    CardLabel* mRatioLabel = nullptr;
    CardLabel* mFreqLabel = nullptr;
    CardLabel* mOctaveShiftLabel = nullptr;
    CardLabel* mEnharmonicLabel = nullptr;
    QList<CardGraphic*> mArrows;     // made when needed, hidden when not
    CardLabel* mDownLabel = nullptr; // made when needed, hidden when not
    CardLabel* mUpLabel = nullptr;
    qsizetype mArrowsShown = 0;

    QLine mDownLine; // null: none
    QLine mUpLine;
    HejiSigns mSigns; // of Helmholtz-Ellis notation
};
