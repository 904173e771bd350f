#include "ui/cards/CardWidget.h"

#include "app/Accessors.h"
#include "model/Orlo.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"
#include "sound/PdPlayer.h"
#include "ui/cards/CardGraphic.h"
#include "ui/cards/CardLabel.h"
#include "ui/cards/CardTip.h"
#include "ui/cards/HighestPrimeColor.h"
#include "ui/cards/RatioParts.h"
#include "ui/cards/StaffLines.h"
#include "ui/cards/SvgLoader.h"
#include "ui/cards/SvgRecolor.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/CardStackWidget.h"

#include <QDebug>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOption>
#include <QToolTip>
#include <QtMath>

namespace {

// Used without a style sheet, which otherwise sets the size.
constexpr QSize CARD_SIZE(174, 72);

constexpr int STAFF_WIDTH = 64;
constexpr int NOTE_AREA_WIDTH = 60; // clef, accidental and note
constexpr int NOTE_AREA_GAP = 4;    // after the clef
constexpr int CENTS_GAP = 3;
constexpr int TEXT_X = 70;
constexpr int TEXT_Y = 3;
constexpr int RATIO_GAP = 20; // under the name
constexpr int TWO_LINE_RISE = 5;

// How the soundgrape pushes the other parts aside.
constexpr int GRAPE_STAFF_AND_NAME_X = 30;
constexpr int GRAPE_ACCIDENTAL_X = -3;
constexpr int GRAPE_NAME_X = 3;
constexpr int GRAPE_NAME_Y = 3;
constexpr int GRAPE_ENHARMONIC_Y = -5;
constexpr int GRAPE_RATIO_RISE = 3;

constexpr QRgb STAFF_COLOR = 0xffaaaaaa;
constexpr QRgb STAFF_COLOR_AT_STACK_TWO = 0xff7c7c7c;
constexpr QRgb MORE_COLOR = 0xffdddddd;

int roundedHalf(int length)
{
    return qRound(length / 2.0);
}

} // namespace

// ---------------------------------------------------------------- what a card says

CardWidget::CardWidget(const OrloBall* ball, CardStackWidget* stack)
    : QFrame(stack)
    , mAtStackTwo(false)
    , mBall(ball)
    , mLoader(stack->loader())
{
    init();
}

CardWidget::CardWidget(const OrloRatio* ratio, CardStackTwoWidget* stack)
    : QFrame(stack)
    , mAtStackTwo(true)
    , mRatio(*ratio)
    , mLoader(stack->loader())
{
    init();
}

CardWidget::~CardWidget() = default;

Note CardWidget::getNoteForPath(const OrloPathUnlimited* path, float frequency)
{
    return Note::getNoteForPath(path, frequency);
}

void CardWidget::changeSvgColor(QByteArray* svg, int key)
{
    recolorSvg(*svg, app::orlo()->lookupColor(key));
}

int CardWidget::findHighestPrime(const OrloPathUnlimited* path)
{
    return highestprime::colorKey(*path);
}

float CardWidget::getStaffLineForNote(bool bass, const Note& note)
{
    return StaffPosition::unshifted(bass, note);
}

CardContents CardWidget::readContents() const
{
    CardContents contents = mAtStackTwo ? CardContents::ofRatio(mRatio) : CardContents::ofBall(*mBall);
    if (CardContents::isHejiWanted() && mLoader->hejiFont().isUsable())
        contents.writeStaffInHeji();
    return contents;
}

// ---------------------------------------------------------------- parts

CardLabel* CardWidget::addLabel(const char* name)
{
    auto* label = new CardLabel(&mLoader->pictures(), this);
    label->setObjectName(QLatin1StringView(name));
    mLabels.append(label);
    return label;
}

CardGraphic* CardWidget::addGraphic()
{
    auto* graphic = new CardGraphic(mLoader, this);
    mGraphics.append(graphic);
    return graphic;
}

QByteArray CardWidget::recoloured(QByteArray svg) const
{
    recolorSvg(svg, mContents.color);
    return svg;
}

const QByteArray* CardWidget::accidentalGraphic() const
{
    switch (mContents.accidental) {
    case -2: return &mLoader->doubleFlat;
    case -1: return &mLoader->flat;
    case 1: return &mLoader->sharp;
    case 2: return &mLoader->doubleSharp;
    default: return nullptr;
    }
}

void CardWidget::init()
{
    mNoteLabel = addLabel("noteLabel");
    mOctaveLabel = addLabel("octaveLabel");
    mCentsLabel = addLabel("centsLabel");
    mRatioLabel = addLabel("ratioLabel");
    mFreqLabel = addLabel("freqLabel");
    mOctaveShiftLabel = addLabel("octaveShiftLabel");
    mEnharmonicLabel = addLabel("enharmonicLabel");
    mEnharmonicLabel->setText(QStringLiteral("enh"));
    mClef = addGraphic();
    mNote = addGraphic();
    mPlainAccidental = addGraphic();
    mAccidental = addGraphic();
    mContents = readContents();
    fill();
}

void CardWidget::fill()
{
    qDebug() << "Cents for cent deviation display: " << mContents.roundedCents;
    mNoteLabel->setText(mContents.letter);
    mOctaveLabel->setText(mContents.octave);
    mCentsLabel->setText(mContents.cents);
    mFreqLabel->setText(mContents.hertz);
    mEnharmonicLabel->setVisible(mContents.enharmonic);
    mOctaveShiftLabel->setVisible(mContents.staff.octaveShift != 0);
    mOctaveShiftLabel->setText(mContents.staff.octaveShift != 0
                                   ? QString::number(7 * qAbs(mContents.staff.octaveShift) + 1)
                                   : QString());

    mClef->setSvg(mContents.bass ? mLoader->bassClef : mLoader->trebleClef);
    mNote->setSvg(recoloured(mLoader->note));
    const QByteArray* accidental = accidentalGraphic();
    mPlainAccidental->setVisible(accidental);
    mAccidental->setVisible(showsAccidental());
    if (accidental) {
        mPlainAccidental->setSvg(*accidental);
        mAccidental->setSvg(recoloured(*accidental));
    }
    const QString spelling = mContents.heji ? mContents.heji->text() : QString();
    if (accessibleDescription() != spelling)
        setAccessibleDescription(spelling);
}

void CardWidget::refill()
{
    CardContents present = readContents();
    if (present == mContents)
        return;
    mContents = std::move(present);
    fill();
    if (isVisible())
        layOut();
    else
        mLayoutIsOld = true;
}

void CardWidget::refillFor(const OrloBall* ball)
{
    mBall = ball;
    mHierarchy = 0;
    refill();
}

void CardWidget::refillFor(const OrloRatio& ratio)
{
    mRatio = ratio;
    mHierarchy = 0;
    refill();
}

QSize CardWidget::sizeHint() const
{
    return CARD_SIZE;
}

// ---------------------------------------------------------------- layout

void CardWidget::resizeEvent(QResizeEvent* event)
{
    QFrame::resizeEvent(event);
    layOut();
}

void CardWidget::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    if (mLayoutIsOld)
        layOut();
}

void CardWidget::layOut()
{
    mLayoutIsOld = false;
    const QRect area = contentsRect();
    layOutStaff(area);
    layOutCents(area);
    layOutName(area);
    layOutRatio(area);
    layOutOctaveShift();
    layOutGrape();
    update(); // as the parts do not paint themselves
}

void CardWidget::layOutStaff(const QRect& area)
{
    const StaffLines lines{area};
    mClef->setGeometry(QRect(area.topLeft(), mClef->sizeForHeight(area.height())));

    const QSize noteSize = mNote->sizeForHeight(static_cast<int>(lines.spacing() + 1.0F));
    QSize accidentalSize(0, 0);
    if (hasAccidental()) {
        accidentalSize = mPlainAccidental->sizeForHeight(qRound(lines.spacing() * 3));
        mPlainAccidental->resize(accidentalSize);
    }
    const int room = NOTE_AREA_WIDTH - mClef->width() - noteSize.width() - ACCIDENTAL_GAP;
    mSigns = mContents.heji ? hejiSigns(area, room) : HejiSigns();
    int groupWidth = noteSize.width();
    if (showsAccidental())
        groupWidth += accidentalSize.width() + ACCIDENTAL_GAP;
    else if (mSigns.width > 0.0)
        groupWidth += qCeil(mSigns.width) + ACCIDENTAL_GAP;
    const int freeSpace = NOTE_AREA_WIDTH - mClef->width() - groupWidth;
    int x = area.left() + mClef->width() + NOTE_AREA_GAP + roundedHalf(freeSpace);
    const int y = qRound(lines.yOf(mContents.staff.position) - static_cast<float>(noteSize.height()) / 2);
    if (showsAccidental()) {
        if (mContents.hasGrape())
            x += GRAPE_ACCIDENTAL_X;
        mAccidental->setGeometry(
            QRect(QPoint(x, qRound(static_cast<float>(y) - lines.spacing())), accidentalSize));
        x += accidentalSize.width() + ACCIDENTAL_GAP;
    } else if (mSigns.width > 0.0) {
        x += qCeil(mSigns.width) + ACCIDENTAL_GAP;
    }
    mNote->setGeometry(QRect(QPoint(x, y), noteSize));
}

void CardWidget::layOutCents(const QRect& area)
{
    mCentsLabel->fit();
    const int height = mCentsLabel->height();
    const int x = qRound(mNote->x() + (mNote->width() - mCentsLabel->width()) / 2.0);
    int y = 0;
    if (mContents.cents.startsWith(u'+'))
        y = qMin(mNote->y() - height - CENTS_GAP, area.top() - CENTS_GAP);
    else
        y = qMax(mNote->y() + mNote->height() + CENTS_GAP, area.top() + area.height() - height + CENTS_GAP);
    mCentsLabel->move(x, y);
    if (mContents.heji)
        moveCentsBesideSigns(area.left() + TEXT_X);
}

void CardWidget::layOutName(const QRect& area)
{
    const bool grape = mContents.hasGrape();
    QPoint place = area.topLeft() + QPoint(TEXT_X, TEXT_Y);
    if (grape)
        place += QPoint(GRAPE_STAFF_AND_NAME_X + GRAPE_NAME_X, GRAPE_NAME_Y);
    mNoteLabel->fit();
    mNoteLabel->move(place);

    int x = place.x() + mNoteLabel->width();
    if (hasAccidental()) {
        mPlainAccidental->move(x + 1, area.top());
        x += 1 + mPlainAccidental->width() + 2;
    }
    mOctaveLabel->fit();
    mOctaveLabel->move(x, place.y());

    if (mContents.enharmonic) { // resolving the font of a hidden label is expensive
        mEnharmonicLabel->fit();
        mEnharmonicLabel->move(area.left() + area.width() - mEnharmonicLabel->width(),
                               area.top() + (grape ? GRAPE_ENHARMONIC_Y : 0));
    }
}

void CardWidget::layOutRatio(const QRect& area)
{
    const int x = mNoteLabel->x();
    const int room = area.left() + area.width() - x;
    mRatioLabel->useSmallPrint(false);
    mRatioLabel->setText(mContents.ratio);
    mRatioLabel->fit();
    bool twoLines = false;
    const auto parts = texts::ratioParts(mContents.ratio);
    if (!parts) {
        qDebug() << "CardWidget: Ratio or ratio label out of boundaries: conversion failed!";
    } else if (!parts->areWithinBounds()) {
        qDebug() << "CardWidget: Ratio out of boundaries";
        mRatioLabel->setText(QStringLiteral("out of\nbounds"));
        twoLines = true;
    } else if (mRatioLabel->width() > room) {
        mRatioLabel->setText(parts->inTwoLines());
        twoLines = true;
    }
    int y = mNoteLabel->y() + mNoteLabel->height() + RATIO_GAP;
    if (mContents.hasGrape())
        y -= GRAPE_RATIO_RISE;
    if (twoLines) {
        mRatioLabel->useSmallPrint(true); // in the height of one line
        mRatioLabel->fit();
        y += TWO_LINE_RISE - roundedHalf(mRatioLabel->height());
    }
    mRatioLabel->move(x, y);
    mFreqLabel->fit();
    mFreqLabel->move(x, y + mRatioLabel->height());
}

void CardWidget::layOutOctaveShift()
{
    constexpr int lowerNoteY = 10; // 8 or 15 above the clef: sounds higher than it is drawn
    constexpr int higherNoteY = 52;
    constexpr int higherNoteLeft = 9;
    if (mContents.staff.octaveShift == 0)
        return;
    mOctaveShiftLabel->fit();
    const int x = mClef->x() + (mClef->width() - mOctaveShiftLabel->width()) / 2;
    if (mContents.staff.octaveShift > 0)
        mOctaveShiftLabel->move(x, lowerNoteY);
    else
        mOctaveShiftLabel->move(x - higherNoteLeft, higherNoteY);
}

// ---------------------------------------------------------------- soundgrape

void CardWidget::layOutGrape()
{
    mArrowsShown = 0;
    if (mContents.notation == CardContents::Coloured) {
        addArrows(mContents.grape.down, SoundGrape::Direction::Down);
        addArrows(mContents.grape.up, SoundGrape::Direction::Up);
    }
    for (qsizetype i = mArrowsShown; i < mArrows.size(); ++i)
        mArrows[i]->hide();

    const bool blackAndWhite = mContents.notation == CardContents::BlackAndWhite;
    mDownLine = layOutPrimes(mContents.grape.down, SoundGrape::Direction::Down, blackAndWhite);
    mUpLine = layOutPrimes(mContents.grape.up, SoundGrape::Direction::Up, blackAndWhite);
    if (mContents.notation < CardContents::NoGrape || mContents.notation > CardContents::BlackAndWhite)
        qDebug() << "Not a viable int value for soundgrape (0,1 or 2)";
}

void CardWidget::addArrows(const QList<int>& primes, SoundGrape::Direction direction)
{
    const bool down = direction == SoundGrape::Direction::Down;
    // Up to the text, and up to the card's frame above and below.
    const QRect room(0, 1, mNoteLabel->x(), height() - 2);
    const QList<SoundGrape::Arrow> arrows =
        SoundGrape::arrowsFrom(mNote->geometry(), primes, direction, room);
    for (const SoundGrape::Arrow& arrow : arrows) {
        const bool shaft = arrow.kind == SoundGrape::Arrow::Shaft;
        QByteArray svg = down ? (shaft ? mLoader->arrow45Down : mLoader->arrowHead45Down)
                              : (shaft ? mLoader->arrow45Up : mLoader->arrowHead45Up);
        if (arrow.kind == SoundGrape::Arrow::More)
            recolorSvg(svg, QColor::fromRgb(MORE_COLOR));
        else
            changeSvgColor(&svg, arrow.prime);
        if (mArrowsShown == mArrows.size())
            mArrows.append(addGraphic());
        CardGraphic* graphic = mArrows[mArrowsShown++];
        graphic->setObjectName(down && !shaft ? QStringLiteral("lastArrow") : QString());
        graphic->setSvg(svg);
        graphic->setGeometry(arrow.place);
        graphic->show();
    }
}

QLine CardWidget::layOutPrimes(const QList<int>& primes, SoundGrape::Direction direction, bool show)
{
    CardLabel*& label = direction == SoundGrape::Direction::Down ? mDownLabel : mUpLabel;
    if (!show || primes.isEmpty()) {
        if (label)
            label->hide();
        return {};
    }
    if (!label)
        label = addLabel("SGBWLabel");
    const QLine line = SoundGrape::lineFrom(mNote->geometry(), direction);
    const SoundGrape::Text text = SoundGrape::textOf(primes);
    label->useSmallPrint(false);
    label->setTextFormat(text.hasExponent ? Qt::RichText : Qt::PlainText);
    label->setText(text.text);
    label->move(SoundGrape::labelAt(line, direction, text.hasExponent));
    label->fit();
    // Exponents have a fixed font size; primes in small print would be unreadable beside them.
    if (!text.hasExponent && label->x() + label->width() > mNoteLabel->x())
        label->useSmallPrint(true);
    label->show();
    return line;
}

// ---------------------------------------------------------------- drawing

bool CardWidget::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        showTip(static_cast<QHelpEvent*>(event)->globalPos());
        return true;
    }
    const bool handled = QFrame::event(event);
    if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange) {
        setAttribute(Qt::WA_StyledBackground, false); // paper() draws it
        // Queued, so that the labels have their new fonts before the layout.
        if (event->type() == QEvent::StyleChange)
            QMetaObject::invokeMethod(this, &CardWidget::followStyle, Qt::QueuedConnection);
    }
    return handled;
}

void CardWidget::followStyle()
{
    mLoader->pictures().clear();
    layOut();
}

/// The frame as the style draws it. A rounded one takes longer than all else on the card together.
QPixmap CardWidget::paper()
{
    QPixmap& paper = mLoader->pictures().paper(mAtStackTwo);
    const qreal ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * ratio).toSize();
    if (paper.size() == pixels && paper.devicePixelRatio() == ratio)
        return paper;
    paper = QPixmap(pixels);
    paper.setDevicePixelRatio(ratio);
    paper.fill(Qt::transparent);
    QPainter painter(&paper);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    drawFrame(&painter);
    painter.end();
    return paper;
}

QPixmap CardWidget::wholePicture()
{
    CardPictures& kept = mLoader->pictures();
    const CardPictures::Look look{mContents, mAtStackTwo, size(), devicePixelRatioF()};
    if (const QPixmap* known = kept.card(look))
        return *known;
    QPixmap picture = paper();
    QPainter painter(&picture);
    drawLines(painter);
    drawSoundGrapeBW(painter);
    drawHejiSigns(painter);
    drawParts(painter);
    painter.end();
    kept.keepCard(look, picture);
    return picture;
}

void CardWidget::paintEvent(QPaintEvent*)
{
    if (mLayoutIsOld)
        layOut();
    QPainter painter(this);
    if (isShortened())
        drawShortened(painter);
    else
        painter.drawPixmap(0, 0, wholePicture());
}

void CardWidget::drawParts(QPainter& painter) const
{
    for (const CardGraphic* graphic : mGraphics) {
        if (!graphic->isHidden())
            graphic->draw(painter);
    }
    for (const CardLabel* label : mLabels) {
        if (!label->isHidden())
            label->draw(painter);
    }
}

void CardWidget::drawLines(QPainter& painter) const
{
    const StaffLines lines{contentsRect()};
    painter.setPen(QPen(QColor::fromRgb(isAtStackTwo() ? STAFF_COLOR_AT_STACK_TWO : STAFF_COLOR), 1));
    painter.drawLines(lines.staff(STAFF_WIDTH + (mContents.hasGrape() ? GRAPE_STAFF_AND_NAME_X : 0)));
    painter.drawLines(lines.ledgers(mContents.staff.position, mNote->geometry()));
}

void CardWidget::drawSoundGrapeBW(QPainter& painter) const
{
    painter.setPen(QPen(Qt::black, 1));
    for (const QLine& line : {mDownLine, mUpLine}) {
        if (!line.isNull())
            painter.drawLine(line);
    }
}

// ---------------------------------------------------------------- pointer

void CardWidget::enterEvent(QEnterEvent* event)
{
    QFrame::enterEvent(event);
    raise();
}

void CardWidget::toggleRatioForCard() const
{
    const OrloNoteEvent toggle(mContents.absolute);
    app::player()->queueEventGui(&toggle);
}

void CardWidget::mousePressEvent(QMouseEvent* event)
{
    const bool left = event->button() == Qt::LeftButton;
    if (event->button() == Qt::RightButton || (left && event->modifiers() == Qt::ControlModifier)) {
        toggleRatioForCard();
    } else if (left && event->modifiers() == Qt::ShiftModifier) {
        const OrloTransposeEvent transpose(mContents.relative);
        app::player()->queueEventGui(&transpose);
    }
}

void CardWidget::mouseDoubleClickEvent(QMouseEvent*)
{
    toggleRatioForCard();
}

void CardWidget::showTip(QPoint globalPosition)
{
    QToolTip::showText(globalPosition,
                       texts::cardTip(mContents, app::player()->heardFrequency(mContents.absolute)), this);
}
