#include "ui/firststeps/FirstSteps.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "memory/StoreAndRecall.h"
#include "model/Orlo.h"
#include "sound/EngineRelay.h"
#include "sound/PdPlayer.h"
#include "ui/firststeps/FirstStepsPlace.h"
#include "ui/firststeps/FirstStepsTexts.h"
#include "ui/lattice/OrloView.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QStackedWidget>

namespace {

constexpr int WIDTH = 232;
constexpr int MARGIN = 8;
constexpr int CHORD_NOTES = 3;

} // namespace

FirstSteps::FirstSteps(QStackedWidget* pages, const QList<QSlider*>& glides)
    : QFrame(pages->parentWidget())
    , mPages(pages)
    , mTitle(new QLabel)
    , mText(new QLabel)
    , mNext(new QPushButton)
{
    setObjectName(QStringLiteral("firstSteps"));
    build();
    listen(glides);
    pages->installEventFilter(this);
    for (OrloView* view : pages->findChildren<OrloView*>())
        view->installEventFilter(this); // a page is laid out when it is first shown
    connect(pages, &QStackedWidget::currentChanged, this, &FirstSteps::placeSoon);
    show(Press);
    QFrame::show();
}

void FirstSteps::build()
{
    setFixedWidth(WIDTH);
    mTitle->setObjectName(QStringLiteral("firstStepsTitle"));
    mText->setObjectName(QStringLiteral("firstStepsText"));
    mText->setWordWrap(true);
    mText->setAlignment(Qt::AlignTop);
    auto* skip = new QPushButton(QStringLiteral("Skip all"));
    skip->setObjectName(QStringLiteral("firstStepsSkip"));
    skip->setToolTip(QStringLiteral("Ends the first steps. The menu has them again."));
    mNext->setObjectName(QStringLiteral("firstStepsNext"));
    mNext->setToolTip(QStringLiteral("Goes on without doing it."));
    connect(skip, &QPushButton::clicked, this, &FirstSteps::end);
    connect(mNext, &QPushButton::clicked, this, &FirstSteps::next);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(skip);
    buttons->addStretch(1);
    buttons->addWidget(mNext);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
    column->setSpacing(MARGIN / 2);
    column->addWidget(mTitle);
    column->addWidget(mText);
    column->addLayout(buttons);
    for (QPushButton* button : {skip, mNext})
        button->setFocusPolicy(Qt::NoFocus); // the keys are the window's
}

void FirstSteps::listen(const QList<QSlider*>& glides)
{
    const EngineRelay* relay = &app::player()->relay();
    connect(relay, &EngineRelay::noteToggled, this, [this](const OrloRatio&, bool on) {
        if (on && (mStep == Press || app::orlo()->playingRatios().size() >= CHORD_NOTES))
            done(mStep == Press ? Press : Chord);
    });
    connect(relay, &EngineRelay::monophonicChanged, this, &FirstSteps::refresh);
    connect(relay, &EngineRelay::nodeSelected, this, &FirstSteps::refresh);
    const StoreAndRecall* memory = app::storeAndRecall();
    connect(memory, &StoreAndRecall::stored, this, [this](int slot) {
        if (mStep == StoreRecall && slot > 0) { // 0 is scratch
            mStoredChord = slot;
            refresh();
        }
    });
    connect(memory, &StoreAndRecall::recalled, this, [this](int slot) {
        if (slot > 0)
            done(StoreRecall);
    });
    connect(app::orlo(), &Orlo::transposeOrBaseFrequencyChanged, this, [this] {
        if (!(app::orlo()->transposition() == mTransposition))
            done(Transpose);
    });
    for (const QSlider* slider : glides) {
        connect(slider, &QSlider::valueChanged, this, [this] {
            if (!app::orlo()->selectedRatios().isEmpty())
                done(Glide);
        });
    }
}

// ---------------------------------------------------------------- from step to step

void FirstSteps::done(Step step)
{
    if (step == mStep)
        next();
}

void FirstSteps::next()
{
    if (mStep + 1 == COUNT)
        end();
    else
        show(static_cast<Step>(mStep + 1));
}

void FirstSteps::end()
{
    mStep = COUNT; // nothing more is noticed
    hide();
    app::say(QStringLiteral("The menu, below the options, has the first steps again."));
    deleteLater();
}

void FirstSteps::show(Step step)
{
    mStep = step;
    mStoredChord = 0;
    mTransposition = app::orlo()->transposition();
    refresh();
}

void FirstSteps::refresh()
{
    const firststeps::Progress progress{.monophonic = app::settings()->monophonic,
                                        .storedChord = mStoredChord,
                                        .hasSelection = !app::orlo()->selectedRatios().isEmpty()};
    mTitle->setText(QStringLiteral("%1 of %2: %3").arg(mStep + 1).arg(COUNT).arg(firststeps::title(mStep)));
    mText->setText(firststeps::text(mStep, progress));
    mNext->setText(mStep + 1 == COUNT ? QStringLiteral("Done") : QStringLiteral("Next"));
    setAccessibleName(QStringLiteral("First steps, %1. %2").arg(mTitle->text(), mText->text()));
    placeSoon();
}

// ---------------------------------------------------------------- place

bool FirstSteps::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        placeSoon();
    return QFrame::eventFilter(watched, event);
}

void FirstSteps::placeSoon()
{
    QMetaObject::invokeMethod(this, &FirstSteps::place, Qt::QueuedConnection); // after the layout
}

void FirstSteps::place()
{
    const QWidget* page = mPages->currentWidget();
    const QSize size(WIDTH, heightForWidth(WIDTH));
    const QPoint corner = placeWithFewestBalls(*page, *page->findChild<OrloView*>(), size);
    setGeometry(QRect(page->mapTo(parentWidget(), corner), size));
    raise();
}
