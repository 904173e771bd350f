#pragma once

#include "ui/UiFixture.h"
#include "ui/cards/CardGraphic.h"
#include "ui/cards/CardWidget.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/stacks/FreeBallWidget.h"
#include "ui/stacks/FreeConnectorOverlay.h"
#include "ui/stacks/NodeStackWidget.h"
#include "ui/stacks/OrloLayer.h"

#include <QLabel>
#include <QPaintEvent>
#include <QTest>

/// One page with its stacks, in the program's look, on which the places on a card depend.
class PageFixture : public UiFixture
{
protected:
    PageFixture()
    {
        settings.absRelView = 0;
        settings.ratiosWithinOctave = false;
        page.init(OrloLeavesWidget::Grapes, &orlo);
        page.resize(1200, 800);
        page.show();
        report();
    }

    void sound(const OrloRatio& ratio, bool on = true)
    {
        orlo.onNoteToggled(ratio, on);
        report();
    }
    /// The card of a pitch, whichever stack it belongs to.
    CardWidget* cardFor(const OrloRatio& ratio)
    {
        if (!orlo.playingRatios().contains(ratio))
            sound(ratio);
        if (CardWidget* card = cards->getCardForRatio(ratio))
            return card;
        const OrloBall* ball = orlo.ballFromRatio(ratio);
        return ball ? cardOf(qPrintable(ball->path().toString())) : nullptr;
    }
    CardWidget* cardOf(const char* path) const
    {
        return page.cardStack()->cardForBall(scene::ballAt(*view, path));
    }
    /// As a button of the window does after it has changed an option.
    void updatePage() const
    {
        view->updateOrloBalls();
        view->updateCardStack();
    }
    void updatePage(int Settings::*option, int value)
    {
        settings.*option = value;
        updatePage();
    }
    /// Whether all of a widget is painted after this change.
    template <class Change>
    static bool isPaintedAnew(QWidget* widget, const Change& change)
    {
        struct Painted : QObject
        {
            bool eventFilter(QObject*, QEvent* event) override
            {
                if (event->type() == QEvent::Paint)
                    region += static_cast<QPaintEvent*>(event)->region();
                return false;
            }
            QRegion region;
        } painted;
        report();
        widget->installEventFilter(&painted);
        change();
        return QTest::qWaitFor([&] { return (QRegion(widget->rect()) - painted.region).isEmpty(); }, 1000);
    }

    static QLabel* label(const CardWidget* card, const char* name)
    {
        return card->findChild<QLabel*>(QLatin1StringView(name));
    }
    static QString text(const CardWidget* card, const char* name) { return label(card, name)->text(); }
    /// The card's graphics that are shown: clef and note, then the plain and the coloured
    /// accidental if there is one, then arrows and heads.
    static QList<CardGraphic*> graphics(const CardWidget* card)
    {
        QList<CardGraphic*> shown;
        for (QObject* child : card->children()) {
            auto* graphic = dynamic_cast<CardGraphic*>(child);
            if (graphic && !graphic->isHidden())
                shown.append(graphic);
        }
        return shown;
    }

    const ProgramLook look;
    OrloLayer page;
    OrloView* const view = page.orloView();
    CardStackTwoWidget* const cards = page.cardStackTwo();
    NodeStackWidget* const stack = page.nodeStack();
};

/// A page of 800 pixels height: the lattice to the left, then the stack, then the cards. The scene is
/// as high as the view, so that one pixel is one unit, its middle lies at 400, and a pitch stands at
/// 405.5 - round(400 ln q / ln 9), cut to a whole number. A ball has the cell 16.2 and keeps 10 from
/// the edges.
class MeasuredPage : public PageFixture
{
protected:
    MeasuredPage()
    {
        view->setFrameShape(QFrame::NoFrame);
        view->scene()->setSceneRect(-450, -400, 900, 800);
        const std::pair<QWidget*, QRect> places[] = {
            {view, {0, 0, 900, 800}}, {stack, {900, 0, 92, 800}}, {cards, {992, 0, 170, 800}}};
        for (const auto& [part, place] : places) {
            part->setParent(&page);
            part->setGeometry(place);
            part->show();
        }
    }

    void add(const QList<OrloRatio>& ratios, bool sounding = false)
    {
        for (const OrloRatio& ratio : ratios) {
            emit orlo.addNodeToStack(ratio);
            emit orlo.toggleNodeInStack(ratio, sounding);
        }
    }
    FreeBallWidget* ball(const OrloRatio& ratio) const { return stack->ballForRatio(ratio); }
    QPoint pointOf(const OrloRatio& ratio) const { return ball(ratio)->pos().toPoint(); }
    /// Lets go what was given to the event loop for deletion.
    static void deleteLater() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
    /// What a click there plays; 0/1: nothing.
    OrloRatio playedAt(QPoint point)
    {
        scene::click(*stack, point);
        const QList<PdMessageBuffer::Chunk> commands = drain();
        return commands.isEmpty() ? OrloRatio() : commands[0].ratio;
    }
    void hover(QPoint point) { scene::mouse(*stack, QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton); }

    FreeConnectorOverlay* const overlay = page.freeConnectors();
};
