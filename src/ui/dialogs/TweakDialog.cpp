#include "ui/dialogs/TweakDialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSignalMapper>
#include <QSpinBox>

namespace {

constexpr int LARGEST = 1000; // of a value, either way
constexpr int MARGIN = 12;
constexpr int ROW_SPACING = 2; // 22 rows fit on a screen of 800 lines
constexpr int COLUMN_SPACING = 24;

} // namespace

TweakDialog::TweakDialog(QWidget* parent)
    : QDialog(parent)
    , mLayout(new QVBoxLayout(this))
    , mMapper(new QSignalMapper(this))
{
    setWindowTitle(QStringLiteral("Tweak Dialog"));
    mLayout->setSpacing(ROW_SPACING);
    mLayout->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
    auto* update = new QPushButton(QStringLiteral("Update"));
    mLayout->addWidget(update);
    connect(update, &QPushButton::clicked, this, &TweakDialog::updateTweaks);
    connect(mMapper, &QSignalMapper::mappedInt, this, &TweakDialog::valueChanged);
}

void TweakDialog::addInt(const QString& name, int* value)
{
    auto* label = new QLabel(name);
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setRange(-LARGEST, LARGEST);
    box->setValue(*value);
    label->setBuddy(box);
    auto* row = new QHBoxLayout;
    row->setSpacing(COLUMN_SPACING);
    row->addWidget(label, 1);
    row->addWidget(box);
    mLayout->insertLayout(mLayout->count() - 1, row);

    mMapper->setMapping(box, static_cast<int>(mValues.size()));
    mValues.append({box, value});
    connect(box, &QSpinBox::valueChanged, mMapper, qOverload<>(&QSignalMapper::map));
}

void TweakDialog::valueChanged(int index)
{
    const auto& [box, value] = mValues.at(index);
    *value = box->value();
}

void TweakDialog::updateTweaks()
{
    // The receiver handles events while it builds, and a key held on the button sends them faster than
    // the scene is built. The build under way comes after them, so it reads what they changed.
    if (mUpdating)
        return;
    const QScopedValueRollback<bool> updating(mUpdating, true);
    emit updateRequested();
}
