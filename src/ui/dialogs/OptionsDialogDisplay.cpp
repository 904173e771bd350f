// How the lattice and the cards look, and the other switches.
#include "ui/dialogs/OptionsDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "ui/dialogs/OptionsPageRows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QVBoxLayout>

using namespace optionspage;

namespace {

constexpr int ZOOM_ON = 6;

} // namespace

void OptionsDialog::addCardRow(QVBoxLayout* layout)
{
    auto* menu = new QComboBox;
    menu->setObjectName(QStringLiteral("centsDisplayDecimals"));
    menu->addItems({QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")});
    const int decimals = app::settings()->centsShowDecimals;
    if (decimals >= 0 && decimals < menu->count())
        menu->setCurrentIndex(decimals);
    connect(menu, &QComboBox::activated, this, &OptionsDialog::onCentsShowDecimalsChanged);
    addLongRow(layout, QStringLiteral("Cards: Round cents display to decimals: "), menu);
}

void OptionsDialog::onCentsShowDecimalsChanged(int index)
{
    app::settings()->centsShowDecimals = index;
    emit displayChanged();
}

void OptionsDialog::addSwitches(QVBoxLayout* layout)
{
    const Settings* settings = app::settings();
    struct Switch
    {
        const char* name;
        QString text;
        bool on;
        void (OptionsDialog::*slot)(bool);
    };
    const Switch switches[] = {
        {"centralNodePIRM", QStringLiteral("Central node turns pale when shifting in relative mode"),
         settings->centralNodeColourRelativeMode, &OptionsDialog::onFurtherOptionsChanged2},
        {"maintainMacros", QStringLiteral("Maintain macro parameters when switching patches"),
         settings->maintainMacroParameters, &OptionsDialog::onMaintainMacrosChanged},
        {"allowZoom", QStringLiteral("Orlo: Allow zoom"), settings->orloZoomMode > 0,
         &OptionsDialog::onAllowZoomChanged},
        {"softNodeReset", QStringLiteral("Nodes: Soft reset"), settings->softNodeReset,
         &OptionsDialog::onSoftNodeResetChanged},
    };
    auto* column = new QVBoxLayout;
    column->setSpacing(ROW_SPACING);
    layout->addLayout(column);
    for (const auto& [name, text, on, slot] : switches) {
        auto* box = new QCheckBox(text);
        box->setObjectName(QLatin1StringView(name));
        box->setChecked(on);
        connect(box, &QCheckBox::clicked, this, slot);
        column->addWidget(box);
    }
}

void OptionsDialog::onFurtherOptionsChanged2(bool on)
{
    app::settings()->centralNodeColourRelativeMode = on;
    emit displayChanged();
}

void OptionsDialog::onMaintainMacrosChanged(bool on)
{
    app::settings()->maintainMacroParameters = on;
}

void OptionsDialog::onAllowZoomChanged(bool on)
{
    app::settings()->orloZoomMode = on ? ZOOM_ON : 0;
    emit zoomModeChanged();
}

void OptionsDialog::onSoftNodeResetChanged(bool on)
{
    app::settings()->softNodeReset = on;
}
