#include "ui/keyboard/ControllerPage.h"

#include "ui/dialogs/OptionsPageRows.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

namespace {

enum Column { Does, Channel, Controller, Input };

constexpr int VISIBLE_TARGETS = 20;

} // namespace

ControllerPage::ControllerPage(QWidget* parent)
    : QWidget(parent)
    , mTargets(new QComboBox)
    , mLearn(new QPushButton(QStringLiteral("Learn")))
    , mState(new QLabel)
    , mList(new QTreeWidget)
    , mRemove(new QPushButton(QStringLiteral("Remove")))
{
    for (const ControllerTarget& target : ControllerTarget::all())
        mTargets->addItem(target.title(), target.id());
    mTargets->setObjectName(QStringLiteral("controllerTargetMenu"));
    mTargets->setMaxVisibleItems(VISIBLE_TARGETS);
    mTargets->setAccessibleName(QStringLiteral("What the controller shall do"));
    mTargets->setToolTip(QStringLiteral("What the controller that you move next shall do."));

    mLearn->setObjectName(QStringLiteral("controllerLearnButton"));
    mLearn->setCheckable(true);
    mLearn->setToolTip(
        QStringLiteral("Waits for the next knob, slider, pedal or button of an open MIDI input."));
    mState->setObjectName(QStringLiteral("controllerState"));
    mState->setTextFormat(Qt::PlainText); // a port names itself
    mState->setWordWrap(true);

    mList->setObjectName(QStringLiteral("controllerList"));
    mList->setAccessibleName(QStringLiteral("Controllers that were learned"));
    mList->setHeaderLabels({QStringLiteral("Does"), QStringLiteral("Channel"), QStringLiteral("Controller"),
                            QStringLiteral("Input")});
    mList->setRootIsDecorated(false);
    mList->setUniformRowHeights(true);
    mList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    mRemove->setObjectName(QStringLiteral("controllerRemoveButton"));
    mRemove->setToolTip(QStringLiteral("The chosen controller does nothing any more."));

    auto* learning = new QHBoxLayout;
    learning->addWidget(mTargets, 1);
    learning->addWidget(mLearn);
    auto* below = new QHBoxLayout;
    below->addStretch(1);
    below->addWidget(mRemove);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(optionspage::PAGE_MARGIN, optionspage::PAGE_MARGIN, optionspage::PAGE_MARGIN,
                               optionspage::PAGE_MARGIN);
    for (QPushButton* button : {mLearn, mRemove})
        button->setAutoDefault(false);
    column->addLayout(learning);
    column->addWidget(mState);
    column->addWidget(mList, 1);
    column->addLayout(below);

    connect(mLearn, &QPushButton::toggled, this, &ControllerPage::showState);
    connect(mTargets, &QComboBox::currentIndexChanged, this, &ControllerPage::showState);
    connect(mRemove, &QPushButton::clicked, this, &ControllerPage::removeChosen);
    connect(mList, &QTreeWidget::itemSelectionChanged, this,
            [this] { mRemove->setEnabled(!mList->selectedItems().isEmpty()); });
    showEntries();
    showState();
}

void ControllerPage::setMap(const ControllerMap& map)
{
    mMap = map;
    showEntries();
}

void ControllerPage::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    mLearn->setChecked(false);
}

void ControllerPage::take(const ControllerSource& source, int value)
{
    if (!isVisible())
        return;
    if (!mLearn->isChecked()) {
        mState->setText(QStringLiteral("Controller %1 of channel %2 is at %3: %4.")
                            .arg(QString::number(source.controller), QString::number(source.channel + 1),
                                 QString::number(value), mMap.targetOf(source).title().toLower()));
        return;
    }
    mMap.learn(source, ControllerTarget::fromId(mTargets->currentData().toString()));
    mLearn->setChecked(false);
    showEntries();
    mList->setCurrentItem(mList->topLevelItem(mList->topLevelItemCount() - 1));
    mState->setText(QStringLiteral("Learned: %1.").arg(mTargets->currentText().toLower()));
    emit mapChanged(mMap);
}

void ControllerPage::removeChosen()
{
    QTreeWidgetItem* item = mList->currentItem();
    if (!item)
        return;
    mMap.remove(mMap.entries().at(mList->indexOfTopLevelItem(item)).source);
    showEntries();
    emit mapChanged(mMap);
}

void ControllerPage::showEntries()
{
    mList->clear();
    for (const auto& [source, target] : mMap.entries()) {
        auto* item = new QTreeWidgetItem(mList);
        item->setText(Does, target.title());
        item->setText(Channel, QString::number(source.channel + 1));
        item->setText(Controller, QString::number(source.controller));
        item->setText(Input, source.input);
        item->setToolTip(Input, source.input.toHtmlEscaped());
    }
    mRemove->setEnabled(false);
}

void ControllerPage::showState()
{
    mState->setText(
        mLearn->isChecked()
            ? QStringLiteral("Move the controller that shall do it.")
            : QStringLiteral("Choose what a controller shall do, press Learn and move it. It takes "
                             "a slider over once it has passed the slider's place."));
}
