#pragma once

#include "ui/UiFixture.h"
#include "ui/cards/SvgLoader.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/FreeBallWidget.h"
#include "ui/stacks/FreeConnectorOverlay.h"
#include "ui/stacks/NodeStackWidget.h"

/// A page of 800 pixels height: the lattice to the left, then the stack, then the cards, and the
/// lines over all of it. The scene is as high as the view, so that one pixel is one unit, its
/// middle lies at 400, and a pitch stands at 405.5 - round(400 ln q / ln 9), cut to a whole number.
/// A ball has the cell 16.2 and keeps 10 from the edges.
class NodeStackFixture : public UiFixture
{
protected:
    static constexpr int WINDOW_HEIGHT = 800;
    static constexpr int VIEW_WIDTH = 900;
    static constexpr int STACK_WIDTH = 92;

    NodeStackFixture()
    {
        view->setParent(&page);
        view->setFrameShape(QFrame::NoFrame);
        view->init(OrloLeavesWidget::Grapes, &orlo);
        view->scene()->setSceneRect(-450, -400, VIEW_WIDTH, WINDOW_HEIGHT);
        cards = new CardStackTwoWidget(&page);
        cards->init(view, &loader);
        stack = new NodeStackWidget(&page);
        overlay = new FreeConnectorOverlay(&page);
        overlay->init(view, cards, stack);
        stack->init(overlay, view, cards);
        view->setGeometry(0, 0, VIEW_WIDTH, WINDOW_HEIGHT);
        stack->setGeometry(VIEW_WIDTH, 0, STACK_WIDTH, WINDOW_HEIGHT);
        cards->setGeometry(VIEW_WIDTH + STACK_WIDTH, 0, 170, WINDOW_HEIGHT);
        overlay->setGeometry(0, 0, 1200, WINDOW_HEIGHT);
        page.resize(1200, WINDOW_HEIGHT);
        page.show();
    }

    void add(const QList<OrloRatio>& ratios)
    {
        for (const OrloRatio& ratio : ratios)
            stack->addNodeForRatio(ratio);
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

    SvgLoader loader;
    QWidget page;
    OrloView* view = new OrloView; // all four are the page's
    CardStackTwoWidget* cards;
    NodeStackWidget* stack;
    FreeConnectorOverlay* overlay;
};
