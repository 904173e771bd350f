#include "ui/harmony/HarmonyPanel.h"

#include "app/Accessors.h"
#include "harmony/Drift.h"
#include "harmony/Harmony.h"
#include "harmony/SoundingNotes.h"
#include "model/Orlo.h"
#include "ui/harmony/CentsRuler.h"
#include "ui/harmony/CutLabel.h"
#include "ui/harmony/HarmonyTexts.h"
#include "ui/harmony/PairDelegate.h"
#include "ui/harmony/PairsModel.h"
#include "ui/hints/ControlHints.h"

#include <QElapsedTimer>
#include <QGridLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 FRAME_MS = 16;
/// A chord of very many notes that glides is looked at less often, so that most of the time is left to
/// presses.
constexpr qint64 REST = 3; // for each time that a look takes
constexpr int MARGIN = 8;
constexpr int SPACING = 4;
constexpr int LEAST_LIST_HEIGHT = 64;

QLabel* caption(const QString& text)
{
    auto* label = new QLabel(text);
    label->setObjectName(u"harmonyCaption"_s);
    label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    return label;
}

} // namespace

HarmonyPanel::HarmonyPanel(QWidget* parent)
    : QFrame(parent)
    , mLeftOut(new CutLabel(1))
    , mRuler(new CentsRuler)
    , mPairs(new PairsModel(this))
    , mDrift(new CutLabel(3))
{
    setObjectName(u"harmonyPanel"_s);
    setWindowTitle(u"Harmony"_s);
    setAccessibleName(u"Harmony"_s);
    setAttribute(Qt::WA_StyledBackground);
    setFocusPolicy(Qt::NoFocus); // the keys are the window's
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
    column->setSpacing(SPACING);
    column->addLayout(makeHeader());
    column->addLayout(makeFacts());
    mLeftOut->setObjectName(u"harmonyLeftOut"_s);
    column->addWidget(mLeftOut);
    mRuler->setObjectName(u"harmonyRuler"_s);
    mRuler->setAccessibleName(u"Notes on a ruler of cents"_s);
    column->addWidget(mRuler);
    column->addWidget(caption(u"Intervals: log2(n d), cents; beats a second"_s));
    column->addWidget(makePairs(), 1);
    column->addWidget(caption(u"1/1 since the start"_s));
    mDrift->setObjectName(u"harmonyDrift"_s);
    column->addWidget(mDrift);
    hints::giveAll(this);
    setFloats(false);

    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, [this] {
        QElapsedTimer clock;
        clock.start();
        look();
        emit looked();
        mTimer.setInterval(static_cast<int>(qMax(FRAME_MS, REST * clock.elapsed())));
    });
}

QLayout* HarmonyPanel::makeHeader()
{
    auto* title = new QLabel(u"Harmony"_s);
    title->setObjectName(u"harmonyTitle"_s);
    mFloat = new QPushButton;
    mFloat->setObjectName(u"harmonyFloatButton"_s);
    auto* close = new QPushButton(u"x"_s);
    close->setObjectName(u"harmonyCloseButton"_s);
    auto* row = new QHBoxLayout;
    row->setSpacing(SPACING);
    row->addWidget(title, 1);
    for (QPushButton* button : {mFloat, close}) {
        button->setFocusPolicy(Qt::NoFocus);
        row->addWidget(button);
    }
    connect(mFloat, &QPushButton::clicked, this, &HarmonyPanel::floatClicked);
    connect(close, &QPushButton::clicked, this, &HarmonyPanel::closeClicked);
    return row;
}

HarmonyPanel::Fact HarmonyPanel::addFact(QGridLayout& grid, const char* control, const QString& name,
                                         int mostLines)
{
    const Fact fact{caption(name), new CutLabel(mostLines)};
    fact.text->setObjectName(QLatin1StringView(control));
    const int row = grid.rowCount();
    grid.addWidget(fact.caption, row, 0);
    grid.addWidget(fact.text, row, 1);
    return fact;
}

QLayout* HarmonyPanel::makeFacts()
{
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(MARGIN);
    grid->setVerticalSpacing(SPACING);
    grid->setColumnStretch(1, 1);
    mFirst = addFact(*grid, "harmonyChord", u"Otonal"_s, 3);
    mSecond = addFact(*grid, "harmonyInverse", u"Utonal"_s, 1);
    mLimit = addFact(*grid, "harmonyLimit", u"Prime limit"_s, 1);
    mFundamental = addFact(*grid, "harmonyFundamental", u"Fundamental"_s, 2);
    return grid;
}

QWidget* HarmonyPanel::makePairs()
{
    auto* list = new QListView;
    list->setObjectName(u"harmonyPairs"_s);
    list->setModel(mPairs);
    list->setItemDelegate(new PairDelegate(list));
    list->setUniformItemSizes(true);
    list->setAlternatingRowColors(true);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setFocusPolicy(Qt::NoFocus);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setMinimumHeight(LEAST_LIST_HEIGHT);
    list->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
    return list;
}

void HarmonyPanel::setFloats(bool floats)
{
    mFloat->setText(floats ? u"Dock"_s : u"Float"_s);
    hints::give(mFloat, floats ? "harmonyDockButton" : "harmonyFloatButton");
}

// ---------------------------------------------------------------- what sounds

void HarmonyPanel::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    look();
    mTimer.start(static_cast<int>(FRAME_MS));
}

void HarmonyPanel::hideEvent(QHideEvent* event)
{
    mTimer.stop();
    QFrame::hideEvent(event);
}

void HarmonyPanel::look()
{
    const Orlo* orlo = app::orlo();
    const QList<SoundingNote> notes = soundingNotes(*app::player(), orlo->baseFrequency());
    if (!mFilled || notes != mNotes || !(orlo->transposition() == mTransposition))
        fill(notes, orlo->transposition());
}

void HarmonyPanel::fill(const QList<SoundingNote>& notes, const OrloRatio& transposition)
{
    const bool hasMoved = !mFilled || !(transposition == mTransposition);
    mFilled = true;
    mNotes = notes;
    mTransposition = transposition;
    const Harmony harmony = Harmony::of(notes);
    showChord(harmony);
    mRuler->setHarmony(harmony);
    mPairs->setHarmony(harmony);
    if (hasMoved)
        mDrift->setWhole(Drift::of(transposition).text());
}

void HarmonyPanel::showChord(const Harmony& harmony)
{
    const auto show = [&harmony](const Fact& fact, bool isOtonal) {
        fact.caption->setText(isOtonal ? u"Otonal"_s : u"Utonal"_s);
        fact.text->setWhole(isOtonal ? harmonytexts::otonal(harmony) : harmonytexts::utonal(harmony));
    };
    show(mFirst, harmony.isOtonal);
    show(mSecond, !harmony.isOtonal);
    mLimit.text->setWhole(harmonytexts::limit(harmony));
    mFundamental.text->setWhole(harmonytexts::fundamental(harmony));
    mLeftOut->setWhole(harmonytexts::leftOut(harmony));
    mLeftOut->setVisible(!mLeftOut->whole().isEmpty());
}
