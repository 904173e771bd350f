#include "ui/panel/DisplaySwitches.h"

#include "app/Settings.h"

#include <QAction>
#include <QHash>
#include <QPushButton>
#include <QStackedWidget>

namespace {

constexpr int CIRCLES_PAGE = 0;
constexpr int GRAPES_PAGE = 1;
// Values of the option `soundGrapeNotation`.
constexpr int NO_SOUNDGRAPE = 0;
constexpr int COLOURED_SOUNDGRAPE = 1;
constexpr int BLACK_AND_WHITE_SOUNDGRAPE = 2;

} // namespace

DisplaySwitches::DisplaySwitches(const Widgets& widgets, Settings* settings)
    : mWidgets(widgets)
    , mSettings(settings)
{
}

void DisplaySwitches::takeHelmholtzEllis(QAction* entry)
{
    mHelmholtzEllis = entry;
    entry->setCheckable(true);
    setButtons();
}

void DisplaySwitches::showPage()
{
    mWidgets.pages->setCurrentIndex(mSettings->circlesView ? CIRCLES_PAGE : GRAPES_PAGE);
}

bool DisplaySwitches::isCirclesPage() const
{
    return mWidgets.pages->currentIndex() == CIRCLES_PAGE;
}

void DisplaySwitches::setButtons()
{
    mWidgets.normalizeRatios->setChecked(mSettings->ratiosWithinOctave);
    const int notation = mSettings->soundGrapeNotation;
    if (notation <= BLACK_AND_WHITE_SOUNDGRAPE) {
        mWidgets.soundgrapeColour->setChecked((notation & 1) != 0);
        mWidgets.soundgrapeBW->setChecked(notation == BLACK_AND_WHITE_SOUNDGRAPE);
    }
    if (mHelmholtzEllis)
        mHelmholtzEllis->setChecked(mSettings->helmholtzEllis && notation <= NO_SOUNDGRAPE);
    mWidgets.absoluteMode->setChecked(mSettings->absRelView != 0);
    mWidgets.relativeMode->setChecked(mSettings->absRelView == 0);
    mWidgets.circlesView->setChecked(mSettings->circlesView);
    mWidgets.grapesView->setChecked(!mSettings->circlesView);
}

void DisplaySwitches::chooseView(const QString& word)
{
    const bool circles = word == QStringLiteral("circles");
    if (!circles && word != QStringLiteral("grapes"))
        return;
    mSettings->circlesView = circles;
    showPage();
    setButtons();
    emit displayChanged();
}

void DisplaySwitches::chooseAbsRel(const QString& word)
{
    static const QHash<QString, int> modes{
        {QStringLiteral("relative"), 0}, {QStringLiteral("absolute"), 1}, {QStringLiteral("absolute2"), 2}};
    const auto mode = modes.find(word);
    if (mode == modes.end())
        return;
    mSettings->absRelView = mode.value();
    setButtons();
    emit displayChanged();
}

void DisplaySwitches::normalizeRatiosClicked()
{
    mSettings->ratiosWithinOctave = mWidgets.normalizeRatios->isChecked();
    emit displayChanged();
}

void DisplaySwitches::soundgrapeColourClicked()
{
    chooseSoundgrape(mWidgets.soundgrapeColour->isChecked() ? COLOURED_SOUNDGRAPE : NO_SOUNDGRAPE);
}

void DisplaySwitches::soundgrapeBWClicked()
{
    chooseSoundgrape(mWidgets.soundgrapeBW->isChecked() ? BLACK_AND_WHITE_SOUNDGRAPE : NO_SOUNDGRAPE);
}

void DisplaySwitches::helmholtzEllisTriggered()
{
    mSettings->helmholtzEllis = mHelmholtzEllis->isChecked();
    if (mSettings->helmholtzEllis)
        mSettings->soundGrapeNotation = NO_SOUNDGRAPE;
    setButtons();
    emit displayChanged();
}

/// A card has room for either the soundgrape or Helmholtz-Ellis notation.
void DisplaySwitches::chooseSoundgrape(int notation)
{
    mSettings->soundGrapeNotation = notation;
    if (notation != NO_SOUNDGRAPE)
        mSettings->helmholtzEllis = false;
    setButtons();
    emit displayChanged();
}
