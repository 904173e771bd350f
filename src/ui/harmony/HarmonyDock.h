#pragma once

#include <QObject>
#include <QRect>

class HarmonyPanel;
class OrloLayer;
class QAction;
class QStackedWidget;

/// Where the harmony panel lies: over the strip at the right of the pages, or in a window of its own; and
/// what the options remember of it. Docked, it keeps the pages clear of its strip from the moment that
/// something stands there, or at once where that costs the lattice nothing, until it is closed, floats, or
/// the window gets another size. The docked panel goes and comes with the stacks. [gui]
class HarmonyDock : public QObject
{
    Q_OBJECT

public:
    static constexpr int WIDTH = 270; // the two right columns of the page, and what is free beside them

    /// The pages are OrloLayers in `window`. `action` is the menu's, checked while the panel is shown. None
    /// is owned.
    HarmonyDock(QStackedWidget* pages, QWidget* window, QAction* action);

    void toggle();
    /// The stacks beside the lattice were shown or hidden.
    void setStacksShown(bool shown);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isDocked() const;
    bool isShown() const;
    void setOpen(bool open);
    void toggleFloats();
    void apply();
    void moveBetweenWindows();
    void place();
    void makeRoom();
    void setMargin(bool on);
    OrloLayer* currentLayer() const;

    QStackedWidget* mPages;
    QWidget* mWindow;
    QAction* mAction;
    HarmonyPanel* mPanel;   // a child of the window in either place
    bool mIsTucked = false; // away with the stacks
    bool mHasMargin = false;
    QRect mFloatPlace; // of this run; null: not yet
};
