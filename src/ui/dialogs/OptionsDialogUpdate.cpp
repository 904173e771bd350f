// The page of the update check.
#include "ui/dialogs/OptionsDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "update/UpdateDialog.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace optionspage;

namespace {

constexpr int INTERVAL_LABEL_WIDTH = 300;

} // namespace

QWidget* OptionsDialog::buildUpdatePage()
{
    QWidget* widget = page();
    QVBoxLayout* layout = layoutOf(widget);
    layout->addWidget(
        label(QStringLiteral("The current version is: ") + QCoreApplication::applicationVersion()));

    auto* interval = new QComboBox;
    interval->setObjectName(QStringLiteral("updateIntervalBox"));
    setUpMenu(interval);
    interval->addItems({QStringLiteral("always"), QStringLiteral("weekly"), QStringLiteral("monthly"),
                        QStringLiteral("quarterly"), QStringLiteral("never")});
    interval->setCurrentIndex(app::settings()->updateCheckInterval);
    connect(interval, &QComboBox::activated, this, &OptionsDialog::onUpdateCheckFrequencyActivated);
    auto* caption = label(QStringLiteral("Check for updates automatically at startup:"), interval);
    caption->setWordWrap(true);
    caption->setMinimumWidth(INTERVAL_LABEL_WIDTH);
    layout->addLayout(row({caption, interval}));
    if (!UpdateDialog::CHECKS_AT_START) {
        auto* packaged =
            label(QStringLiteral("This copy was installed as a package, so it makes no check at its start: "
                                 "newer versions come with those of your system."));
        packaged->setWordWrap(true);
        layout->addWidget(packaged);
        interval->setEnabled(false);
    }
    layout->addStretch(1);

    auto* button = new QPushButton(QStringLiteral("Search for updates now ..."));
    button->setObjectName(QStringLiteral("updateCheckButton"));
    connect(button, &QPushButton::clicked, this, &OptionsDialog::onUpdateButtonClicked);
    layout->addWidget(button);
    return widget;
}

void OptionsDialog::onUpdateCheckFrequencyActivated(int index)
{
    app::settings()->updateCheckInterval = index;
}

void OptionsDialog::onUpdateButtonClicked()
{
    UpdateDialog::startCheck(this, true);
}
