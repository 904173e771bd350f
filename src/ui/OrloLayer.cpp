#include "ui/OrloLayer.h"

#include "ui/OrloView.h"

#include <QFrame>
#include <QHBoxLayout>

namespace {

constexpr QMargins CENTRAL_MARGINS(0, 6, 0, 6);
constexpr QMargins RIGHT_MARGINS(6, 6, 6, 6);
constexpr int CARD_STACK_WIDTH = 170;
constexpr int NODE_STACK_WIDTH = 110;

QHBoxLayout* makeRow(QWidget* parent, const QMargins& margins)
{
    auto* row = new QHBoxLayout(parent);
    row->setSpacing(0);
    row->setContentsMargins(margins);
    return row;
}

QWidget* makeStackPlace(const QString& name, int width, QHBoxLayout* row)
{
    auto* place = new QWidget;
    place->setObjectName(name);
    place->setFixedWidth(width);
    place->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    place->setFocusPolicy(Qt::NoFocus);
    row->addWidget(place);
    return place;
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

    auto* rightFrame = new QFrame;
    rightFrame->setObjectName(QStringLiteral("rightFrame"));
    QHBoxLayout* right = makeRow(rightFrame, RIGHT_MARGINS);
    mCardStack = makeStackPlace(QStringLiteral("cardStack"), CARD_STACK_WIDTH, right);
    mNodeStack = makeStackPlace(QStringLiteral("nodeStack"), NODE_STACK_WIDTH, right);
    mCardStackTwo = makeStackPlace(QStringLiteral("cardStackTwo"), CARD_STACK_WIDTH, right);

    QHBoxLayout* page = makeRow(this, QMargins());
    page->addWidget(centralFrame);
    page->addWidget(rightFrame);
}

void OrloLayer::init(OrloLeavesWidget::View view, Orlo* orlo)
{
    mView->init(view, orlo);
}

void OrloLayer::showStacks(bool show)
{
    for (QWidget* stack : {mCardStack, mNodeStack, mCardStackTwo})
        stack->setVisible(show);
}
