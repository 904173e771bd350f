#pragma once

#include "keyboard/Layout.h"

#include <QWidget>

class LayoutForm;
class MidiPlaying;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QPushButton;

/// The list of layouts, of which the first that has a key decides on it, and the values of the chosen one.
/// Every change can be undone. [gui]
class LayoutPage : public QWidget
{
    Q_OBJECT

public:
    explicit LayoutPage(MidiPlaying& playing);

private:
    QPushButton* addButton(const char* name, const QString& text);
    void add(Layout::Kind kind);
    void remove();
    void move(int step);
    void takeItem(const QListWidgetItem* item);
    void takeForm(const Layout& layout);
    void showLayouts();
    void showChosen();
    /// Makes the chosen one the one at this place.
    void apply(const QList<Layout>& layouts, int chosen);

    MidiPlaying& mPlaying;
    QListWidget* mList;
    QMenu* mKinds;
    QPushButton* mRemove;
    QPushButton* mUp;
    QPushButton* mDown;
    QPushButton* mUndo;
    LayoutForm* mForm;
};
