#include "ui/keyboard/LayoutPage.h"

#include "keyboard/LayoutFile.h"
#include "keyboard/MidiPlaying.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/keyboard/LayoutForm.h"
#include "ui/panel/MessageBoxes.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSizePolicy>
#include <QVBoxLayout>

using namespace optionspage;

namespace {

constexpr int LIST_HEIGHT = 130;

} // namespace

LayoutPage::LayoutPage(MidiPlaying& playing)
    : mPlaying(playing)
    , mList(new QListWidget)
    , mKinds(new QMenu(this))
    , mForm(new LayoutForm(playing))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN);
    mList->setObjectName(QStringLiteral("layoutList"));
    mList->setFixedHeight(LIST_HEIGHT);
    mList->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    layout->addWidget(mList);

    auto* buttons = new QHBoxLayout;
    layout->addLayout(buttons);
    QPushButton* add = addButton("layoutAddButton", QStringLiteral("Add"));
    mRemove = addButton("layoutRemoveButton", QStringLiteral("Remove"));
    mUp = addButton("layoutUpButton", QStringLiteral("Up"));
    mDown = addButton("layoutDownButton", QStringLiteral("Down"));
    mUndo = addButton("layoutUndoButton", QStringLiteral("Undo"));
    for (QPushButton* button : {add, mRemove, mUp, mDown, mUndo})
        buttons->addWidget(button);
    QSizePolicy policy = mForm->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // without a layout the list stays where it is
    mForm->setSizePolicy(policy);
    layout->addWidget(mForm, 1);

    for (int kind = 0; kind < Layout::KINDS; ++kind)
        mKinds->addAction(Layout::kindText(Layout::Kind(kind)), this,
                          [this, kind] { this->add(Layout::Kind(kind)); });
    connect(add, &QPushButton::clicked, this,
            [this, add] { mKinds->popup(add->mapToGlobal(add->rect().bottomLeft())); });
    connect(mRemove, &QPushButton::clicked, this, &LayoutPage::remove);
    connect(mUp, &QPushButton::clicked, this, [this] { move(-1); });
    connect(mDown, &QPushButton::clicked, this, [this] { move(1); });
    connect(mUndo, &QPushButton::clicked, &playing, &MidiPlaying::undo);
    connect(mList, &QListWidget::itemChanged, this, &LayoutPage::takeItem);
    connect(mList, &QListWidget::currentRowChanged, this, &LayoutPage::showChosen);
    connect(mForm, &LayoutForm::edited, this, &LayoutPage::takeForm);
    connect(&playing, &MidiPlaying::layoutsChanged, this, &LayoutPage::showLayouts);
    showLayouts();
}

QPushButton* LayoutPage::addButton(const char* name, const QString& text)
{
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1StringView(name));
    button->setAutoDefault(false); // Return in a field ends its edit and presses nothing
    return button;
}

void LayoutPage::apply(const QList<Layout>& layouts, int chosen)
{
    mPlaying.setLayouts(layouts);
    mList->setCurrentRow(chosen);
}

void LayoutPage::add(Layout::Kind kind)
{
    QList<Layout> layouts = mPlaying.layouts();
    if (layouts.size() >= LayoutFile::MAX_LAYOUTS)
        return;
    // On top, since the first one that has a key wins.
    layouts.prepend({.name = Layout::kindText(kind), .kind = kind});
    apply(layouts, 0);
}

void LayoutPage::remove()
{
    const int row = mList->currentRow();
    QList<Layout> layouts = mPlaying.layouts();
    if (row < 0
        || !askBeforeLoss(this, QStringLiteral("Remove layout"),
                          QStringLiteral("Remove the layout %1?").arg(layouts[row].name)))
        return;
    if (layouts != mPlaying.layouts()) // while the question stood there
        return;
    layouts.removeAt(row);
    apply(layouts, qMin(row, static_cast<int>(layouts.size()) - 1));
}

void LayoutPage::move(int step)
{
    const int row = mList->currentRow();
    QList<Layout> layouts = mPlaying.layouts();
    if (row < 0 || row + step < 0 || row + step >= layouts.size())
        return;
    layouts.move(row, row + step);
    apply(layouts, row + step);
}

/// Its box or its name.
void LayoutPage::takeItem(const QListWidgetItem* item)
{
    const int row = mList->row(item);
    QList<Layout> layouts = mPlaying.layouts();
    layouts[row].enabled = item->checkState() == Qt::Checked;
    if (const QString name = item->text().trimmed(); !name.isEmpty())
        layouts[row].name = name;
    apply(layouts, row);
    showLayouts(); // an empty name gives way to the former one
}

void LayoutPage::takeForm(const Layout& layout)
{
    const int row = mList->currentRow();
    QList<Layout> layouts = mPlaying.layouts();
    if (row < 0 || row >= layouts.size())
        return;
    layouts[row] = layout;
    apply(layouts, row);
}

void LayoutPage::showLayouts()
{
    const QList<Layout>& layouts = mPlaying.layouts();
    {
        const QSignalBlocker quiet(mList);
        while (mList->count() > layouts.size())
            delete mList->takeItem(mList->count() - 1);
        for (int row = 0; row < layouts.size(); ++row) {
            if (row == mList->count())
                mList->addItem(new QListWidgetItem);
            QListWidgetItem* item = mList->item(row);
            item->setFlags(item->flags() | Qt::ItemIsUserCheckable | Qt::ItemIsEditable);
            item->setText(layouts[row].name);
            item->setCheckState(layouts[row].enabled ? Qt::Checked : Qt::Unchecked);
        }
        if (mList->currentRow() < 0 && !layouts.isEmpty())
            mList->setCurrentRow(0);
    }
    showChosen();
}

void LayoutPage::showChosen()
{
    const int row = mList->currentRow();
    const bool any = row >= 0 && row < mPlaying.layouts().size();
    mForm->setEnabled(any);
    mForm->setVisible(any);
    if (any)
        mForm->showLayout(mPlaying.layouts()[row]);
    mRemove->setEnabled(any);
    mUp->setEnabled(any && row > 0);
    mDown->setEnabled(any && row + 1 < mList->count());
    mUndo->setEnabled(mPlaying.canUndo());
}
