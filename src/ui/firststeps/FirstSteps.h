#pragma once

#include "model/OrloRatio.h"

#include <QFrame>
#include <QList>

class QLabel;
class QPushButton;
class QSlider;
class QStackedWidget;

/// Five short cards, one after the other, over a corner of the lattice: press, chord, store and recall,
/// transpose, select and glide. Each is done by doing it, which the card notices by what model, engine and
/// chord memory report. Keys, and presses beside the card, go to the window as ever. It deletes itself at the
/// end. [gui]
class FirstSteps : public QFrame
{
    Q_OBJECT

public:
    enum Step { Press, Chord, StoreRecall, Transpose, Glide, COUNT };

    /// The card lies over the page of `pages` that is shown. `glides` are the glissando sliders. None is
    /// owned.
    FirstSteps(QStackedWidget* pages, const QList<QSlider*>& glides);

    Step step() const { return mStep; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build();
    void listen(const QList<QSlider*>& glides);
    void done(Step step);
    void next();
    void end();
    void show(Step step);
    void refresh();
    void placeSoon();
    void place();

    QStackedWidget* mPages;
    QLabel* mTitle;
    QLabel* mText;
    QPushButton* mNext;
    Step mStep = Press;
    int mStoredChord = 0; // 0: none yet
    OrloRatio mTransposition;
};
