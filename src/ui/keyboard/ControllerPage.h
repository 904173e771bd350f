#pragma once

#include "keyboard/ControllerMap.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;
class QTreeWidget;

/// The page on which controllers are learned: the player chooses what one shall do and moves it. Below it
/// stands what has been learned, which can be removed. It edits a map of its own and tells each change.
class ControllerPage : public QWidget
{
    Q_OBJECT

public:
    explicit ControllerPage(QWidget* parent = nullptr);

    /// Shows this map; mapChanged() is not emitted.
    void setMap(const ControllerMap& map);
    const ControllerMap& map() const { return mMap; }

    /// Every controller that moves, learned or not. `value`: 0 to 127.
    void take(const ControllerSource& source, int value);

signals:
    /// The player has learned or removed a controller.
    void mapChanged(const ControllerMap& map);

protected:
    /// A page that nobody sees waits for no controller.
    void hideEvent(QHideEvent* event) override;

private:
    void removeChosen();
    void showEntries();
    void showState();

    ControllerMap mMap;
    QComboBox* mTargets;
    QPushButton* mLearn;
    QLabel* mState;
    QTreeWidget* mList;
    QPushButton* mRemove;
};
