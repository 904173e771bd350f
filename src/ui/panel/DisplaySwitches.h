#pragma once

#include <QObject>

class QAction;
class QPushButton;
class QStackedWidget;
class Settings;

/// The buttons that choose how lattice and cards are shown. Each writes its option.
class DisplaySwitches : public QObject
{
    Q_OBJECT

public:
    /// Not owned.
    struct Widgets
    {
        QStackedWidget* pages;
        QPushButton* circlesView;
        QPushButton* grapesView;
        QPushButton* absoluteMode;
        QPushButton* relativeMode;
        QPushButton* normalizeRatios;
        QPushButton* soundgrapeColour;
        QPushButton* soundgrapeBW;
    };
    DisplaySwitches(const Widgets& widgets, Settings* settings);

    /// The menu's entry of Helmholtz-Ellis notation, not owned. Gets a check mark that follows the options.
    void takeHelmholtzEllis(QAction* entry);

    /// The page of the option `circlesView`.
    void showPage();
    bool isCirclesPage() const;
    /// The buttons as the options have them.
    void setButtons();

    /// "circles" or "grapes"; other words are ignored.
    void chooseView(const QString& word);
    /// "absolute", "relative" or "absolute2"; other words are ignored.
    void chooseAbsRel(const QString& word);

    // After a click, which has toggled the button.
    void normalizeRatiosClicked();
    void soundgrapeColourClicked();
    void soundgrapeBWClicked();
    void helmholtzEllisTriggered();

signals:
    /// Balls and cards have to be drawn anew.
    void displayChanged();

private:
    void chooseSoundgrape(int notation);

    Widgets mWidgets;
    Settings* mSettings;
    QAction* mHelmholtzEllis = nullptr;
};
