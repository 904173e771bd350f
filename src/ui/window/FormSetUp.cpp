#include "ui/window/FormSetUp.h"

#include "ui/hints/ControlHints.h"
#include "ui/panel/PanelScroll.h"
#include "ui_MainWindow.h"

#include <QIcon>
#include <QStyledItemDelegate>

void initIcons()
{
    Q_INIT_RESOURCE(icons);
}

namespace {

constexpr QSize LOGO_SIZE(176, 56);

void alignControls(const Ui::MainWindow& form)
{
    form.volumeLayout->setAlignment(form.volumeSlider, Qt::AlignHCenter);
    form.viewButtonsLayout->setAlignment(Qt::AlignHCenter);
    form.expandOrloLayout->setAlignment(Qt::AlignHCenter);
    // A combo box without a delegate of its own ignores the style sheet's height of its rows.
    for (QComboBox* menu : {form.patchMenu, form.presetMenu, form.saveChordBankMenu, form.saveChordSetMenu})
        menu->setItemDelegate(new QStyledItemDelegate(menu));
}

void setUpIcons(const Ui::MainWindow& form, QMainWindow* window)
{
    // A label does not find the picture for a finer screen by itself; an icon does.
    form.logoLabel->setPixmap(
        QIcon(QStringLiteral(":/icons/logo.png")).pixmap(LOGO_SIZE, window->devicePixelRatioF()));
    const std::pair<QPushButton*, const char*> icons[] = {
        {form.patchDecButton, "arrowleft"},
        {form.patchIncButton, "arrowright"},
        {form.presetDecButton, "arrowleft"},
        {form.presetIncButton, "arrowright"},
        {form.chordStorageUpButton, "arrowup"},
        {form.chordStorageDownButton, "arrowdown"},
        {form.optionsButton, "cog"},
        {form.menuButton, "menu"},
    };
    for (const auto& [button, name] : icons)
        button->setIcon(QIcon(QStringLiteral(":/icons/%1.png").arg(QLatin1StringView(name))));
    QIcon windowIcon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256, 512})
        windowIcon.addFile(QStringLiteral(":/icons/app-%1.png").arg(size));
    window->setWindowIcon(windowIcon);
}

void hideUnusedControls(const Ui::MainWindow& form)
{
    QWidget* const hidden[] = {
        form.chordIncludeMacrosButton, form.glissLabel,         form.glissSliderSmall,
        form.glissSliderBig,           form.glissFineSliderBig, form.glissCLineLeft,
        form.glissCLineCenter,         form.glissCLineRight,    form.presetDecButton,
        form.presetIncButton,          form.presetMenu,         form.savePresetButton,
        form.toggleModeButton,         form.shiftModeButton,    form.removeModeButton,
        form.selectApplyModeButton,    form.testingOptions,     form.chordStorageUpButton,
        form.chordStorageDownButton,   form.chordWindowButton,  form.chordSequencerWindowButton,
    };
    for (QWidget* widget : hidden)
        widget->hide();
}

} // namespace

void setUpForm(const Ui::MainWindow& form, QMainWindow* window)
{
    setUpIcons(form, window);
    alignControls(form);
    hideUnusedControls(form);
    hints::giveAll(window);
    new PanelScroll(form.leftFrame, Qt::Vertical);
    new PanelScroll(form.lowerFrame, Qt::Horizontal);
}
