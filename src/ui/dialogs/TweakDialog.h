#pragma once

#include <QDialog>
#include <QList>

#include <utility>

class QSignalMapper;
class QSpinBox;
class QVBoxLayout;

/// A developer's aid: edits the geometry constants at run time and asks for a scene built anew from
/// them. No control opens it, and nothing of it is saved. Graphical thread.
class TweakDialog : public QDialog
{
    Q_OBJECT

public:
    explicit TweakDialog(QWidget* parent);

    /// A row with a spin box for `value`, which outlives the dialog.
    void addInt(const QString& name, int* value);

public slots:
    /// Copies the spin box with this index into its int; nothing is drawn.
    void valueChanged(int index);
    void updateTweaks();

signals:
    void updateRequested();

private:
    QVBoxLayout* mLayout; // the button is its last item
    QSignalMapper* mMapper;
    QList<std::pair<QSpinBox*, int*>> mValues;
    bool mUpdating = false;
};
