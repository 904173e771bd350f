#include "ui/stacks/OrloLayer.h"

#include "model/Orlo.h"
#include "ui/cards/SvgLoader.h"
#include "ui/lattice/OrloView.h"
#include "ui/stacks/CardConnectorOverlay.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/stacks/FreeConnectorOverlay.h"
#include "ui/stacks/NodeStackWidget.h"

#include <QFrame>
#include <QHBoxLayout>

namespace {

constexpr QMargins CENTRAL_MARGINS(0, 6, 0, 6);
constexpr QMargins RIGHT_MARGINS(6, 6, 6, 6);
constexpr int LEAST_LATTICE_WIDTH = 160; // beside a right margin

QHBoxLayout* makeRow(QWidget* parent, const QMargins& margins)
{
    auto* row = new QHBoxLayout(parent);
    row->setSpacing(0);
    row->setContentsMargins(margins);
    return row;
}

} // namespace

OrloLayer::OrloLayer(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::NoFocus);
    auto* centralFrame = new QFrame;
    centralFrame->setObjectName(QStringLiteral("centralFrame"));
    mView = new OrloView;
    makeRow(centralFrame, CENTRAL_MARGINS)->addWidget(mView);

    mRightFrame = new QFrame;
    mRightFrame->setObjectName(QStringLiteral("rightFrame"));
    QHBoxLayout* right = makeRow(mRightFrame, RIGHT_MARGINS);
    mCardStack = new CardStackWidget;
    mNodeStack = new NodeStackWidget;
    mCardStackTwo = new CardStackTwoWidget;
    mCardStack->setObjectName(QStringLiteral("cardStack"));
    mNodeStack->setObjectName(QStringLiteral("nodeStack"));
    mCardStackTwo->setObjectName(QStringLiteral("cardStackTwo"));
    right->addWidget(mCardStack);
    right->addWidget(mNodeStack);
    right->addWidget(mCardStackTwo);

    QHBoxLayout* page = makeRow(this, QMargins());
    page->addWidget(centralFrame);
    page->addWidget(mRightFrame);

    mCardConnectors = new CardConnectorOverlay(this);
    mFreeConnectors = new FreeConnectorOverlay(this);
}

OrloLayer::~OrloLayer() = default;

void OrloLayer::init(OrloLeavesWidget::View view, Orlo* orlo)
{
    mLoader = std::make_unique<SvgLoader>();
    mCardConnectors->init(mView);
    mFreeConnectors->init(mView, mCardStackTwo, mNodeStack);
    mCardStack->init(mCardConnectors, mView, mLoader.get());
    mCardStackTwo->init(mView, mLoader.get());
    mNodeStack->init(mFreeConnectors, mView, mCardStackTwo);
    mView->init(view, orlo, mCardStack, mCardStackTwo, mNodeStack);
    mCardStack->setBottomSpace(0);
    mCardStackTwo->setBottomSpace(0);
    mNodeStack->setBottomSpace(0);
    connectLattice(orlo);
    mFreeConnectors->lower(); // under the lattice and the cards, which are clear or lie on top
}

void OrloLayer::connectLattice(const Orlo* orlo)
{
    constexpr Qt::ConnectionType direct = Qt::DirectConnection;
    connect(orlo, &Orlo::showCard, this, &OrloLayer::cardStackTwoShow, direct);
    connect(orlo, &Orlo::hideCard, this, &OrloLayer::cardStackTwoHide, direct);
    connect(orlo, &Orlo::addNodeToStack, this, &OrloLayer::nodeStackAdd, direct);
    connect(orlo, &Orlo::toggleNodeInStack, this, &OrloLayer::nodeStackToggle, direct);
    connect(orlo, &Orlo::selectNodeInStack, this, &OrloLayer::nodeStackSelect, direct);
    connect(orlo, &Orlo::setHoldNodeInStack, this, &OrloLayer::nodeStackHold, direct);
    connect(orlo, &Orlo::setAlteredNodeInStack, this, &OrloLayer::nodeStackAltered, direct);
    connect(orlo, &Orlo::removeNodeInStack, this, &OrloLayer::nodeStackRemove, direct);
    connect(orlo, &Orlo::showNodesInStack, this, &OrloLayer::nodeStackShow, direct);
    connect(orlo, &Orlo::resetNodeStack, this, &OrloLayer::nodeStackReset, direct);
}

void OrloLayer::showStacks(bool show)
{
    mCardStack->setVisible(show);
    mNodeStack->setVisible(show);
    mCardStackTwo->setVisible(show);
}

void OrloLayer::setRightMargin(int pixels)
{
    mRightMargin = pixels;
    applyMargin();
}

void OrloLayer::applyMargin()
{
    const int most = width() - mRightFrame->sizeHint().width() - LEAST_LATTICE_WIDTH;
    layout()->setContentsMargins(0, 0, qBound(0, most, mRightMargin), 0);
}

bool OrloLayer::isRightEndFree() const
{
    return mNodeStack->isVisibleTo(this) && mNodeStack->balls().isEmpty() && mCardStackTwo->cards().isEmpty();
}

bool OrloLayer::canSpare(int pixels) const
{
    const QRectF scene = mView->sceneRect();
    const int room = width() - mRightFrame->sizeHint().width() - pixels;
    return room * scene.height() >= mView->height() * scene.width();
}

QSize OrloLayer::minimumSizeHint() const
{
    return QWidget::minimumSizeHint() - QSize(layout()->contentsMargins().right(), 0);
}

void OrloLayer::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    applyMargin();
    mCardConnectors->setGeometry(rect());
    mFreeConnectors->setGeometry(rect());
}

// ---------------------------------------------------------------- pitches without a ball

void OrloLayer::cardStackTwoShow(OrloRatio ratio)
{
    mCardStackTwo->showCardForRatio(ratio);
}

void OrloLayer::cardStackTwoHide(OrloRatio ratio)
{
    mCardStackTwo->hideCardForRatio(ratio);
}

void OrloLayer::nodeStackAdd(OrloRatio ratio)
{
    mNodeStack->addNodeForRatio(ratio);
}

void OrloLayer::nodeStackRemove(OrloRatio ratio)
{
    mNodeStack->removeNodeForRatio(ratio);
}

void OrloLayer::nodeStackToggle(OrloRatio ratio, bool on)
{
    mNodeStack->toggleNodeForRatio(ratio, on);
}

void OrloLayer::nodeStackSelect(OrloRatio ratio, bool on)
{
    mNodeStack->selectNodeForRatio(ratio, on);
}

void OrloLayer::nodeStackHold(OrloRatio ratio, bool on)
{
    mNodeStack->setHoldNodeForRatio(ratio, on);
}

void OrloLayer::nodeStackAltered(OrloRatio ratio, bool on)
{
    mNodeStack->setAlteredNodeForRatio(ratio, on);
}

void OrloLayer::nodeStackShow()
{
    mNodeStack->showNodes();
}

void OrloLayer::nodeStackReset()
{
    mNodeStack->reset();
}
