#pragma once

#include <QDialog>
#include <QList>

#include <utility>

class MainWindow;
class QSignalMapper;
class QSpinBox;
class QVBoxLayout;

/// A developer's aid: edits the geometry constants at run time and has the page now shown built
/// anew from them. No control opens it, and nothing of it is saved. Graphical thread.
class TweakDialog : public QDialog
{
    Q_OBJECT

public:
    explicit TweakDialog(MainWindow* window);

    /// A row with a spin box for `value`, which outlives the dialog.
    void addInt(const QString& name, int* value);

public slots:
    /// Copies the spin box with this index into its int; nothing is drawn.
    void valueChanged(int index);
    void updateTweaks();

private:
    QVBoxLayout* mLayout; // the button is its last item
    QSignalMapper* mMapper;
    QList<std::pair<QSpinBox*, int*>> mValues;
    MainWindow* const mMainWindow;
    bool mUpdating = false;
};
