#include "ui/panel/ChordButtonSigns.h"

#include "app/Accessors.h"
#include "memory/StoreAndRecall.h"
#include "model/AbsoluteRatio.h"
#include "model/Orlo.h"
#include "sound/EngineRelay.h"
#include "ui/cards/CardContents.h"
#include "ui/hints/ControlHints.h"

#include <QEvent>
#include <QFrame>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int BAR_HEIGHT = 3;
constexpr int BAR_DISTANCE = 4; // from the button's edges
constexpr qsizetype MOST = 12;  // pitches in a tooltip

QString line(const OrloRatio& ratio)
{
    const CardContents card = CardContents::ofRatio(ratio);
    const QString sign = QString(qAbs(card.accidental), card.accidental < 0 ? u'b' : u'#');
    return QStringLiteral("%1   %2%3%4 %5 cents").arg(card.ratio, card.letter, sign, card.octave, card.cents);
}

} // namespace

ChordButtonSigns::ChordButtonSigns(const QList<QPushButton*>& buttons, const StoreAndRecall* memory,
                                   const EngineRelay& relay)
    : mButtons(buttons)
    , mMemory(memory)
{
    for (QPushButton* button : buttons) {
        auto* bar = new QFrame(button);
        bar->setObjectName(QStringLiteral("chordBar"));
        bar->setAttribute(Qt::WA_TransparentForMouseEvents);
        bar->hide();
        mBars.append(bar);
        button->installEventFilter(this);
    }
    mSoon.setSingleShot(true);
    connect(&mSoon, &QTimer::timeout, this, &ChordButtonSigns::refresh);
    connect(&relay, &EngineRelay::noteToggled, this, &ChordButtonSigns::refreshSoon);
}

void ChordButtonSigns::refreshSoon()
{
    if (!mSoon.isActive())
        mSoon.start(0);
}

bool ChordButtonSigns::sounds(int slot) const
{
    const auto chord = mMemory->chords().constFind(slot);
    if (chord == mMemory->chords().cend() || chord->isEmpty())
        return false;
    const QSet<OrloRatio>& playing = app::orlo()->playingRatios();
    return std::ranges::all_of(*chord,
                               [&playing](const OrloRatio& ratio) { return playing.contains(ratio); });
}

void ChordButtonSigns::refresh()
{
    for (int slot = 1; slot <= mButtons.size(); ++slot) {
        const bool now = sounds(slot);
        QWidget* bar = mBars[slot - 1];
        if (bar->isHidden() != now)
            continue;
        placeBar(slot);
        bar->setVisible(now);
        mButtons[slot - 1]->setAccessibleDescription(now ? QStringLiteral("sounds") : QString());
    }
}

void ChordButtonSigns::placeBar(int slot) const
{
    const QSize size = mButtons[slot - 1]->size();
    mBars[slot - 1]->setGeometry(BAR_DISTANCE, size.height() - BAR_DISTANCE - BAR_HEIGHT,
                                 size.width() - 2 * BAR_DISTANCE, BAR_HEIGHT);
}

QString ChordButtonSigns::tooltip(int slot) const
{
    QList<OrloRatio> chord = mMemory->chords().value(slot);
    QString text;
    if (chord.isEmpty()) {
        text = hints::inLines(
            QStringLiteral("Chord %1 is empty. Press \"Store to ...\" before it to store what sounds.")
                .arg(slot));
    } else {
        std::ranges::sort(chord, {}, [](const OrloRatio& ratio) { return ratios::quotient(ratio); });
        text = QStringLiteral("Chord %1").arg(slot);
        for (const OrloRatio& ratio : chord.first(qMin(MOST, chord.size())))
            text += u'\n' + line(ratio);
        if (chord.size() > MOST)
            text += QStringLiteral("\nand %1 more").arg(chord.size() - MOST);
    }
    return text + u'\n' + hints::inLines(hints::text("chordButton_", slot));
}

bool ChordButtonSigns::eventFilter(QObject* watched, QEvent* event)
{
    const bool isTooltip = event->type() == QEvent::ToolTip;
    if (isTooltip || event->type() == QEvent::Resize) {
        const int slot = static_cast<int>(mButtons.indexOf(watched)) + 1;
        if (isTooltip)
            mButtons[slot - 1]->setToolTip(tooltip(slot));
        else
            placeBar(slot);
    }
    return QObject::eventFilter(watched, event);
}
