#pragma once

#include <QList>
#include <QObject>
#include <QTimer>

class EngineRelay;
class QPushButton;
class QWidget;
class StoreAndRecall;

/// What a chord button tells of its chord: a bar at its foot while all of the chord's pitches sound, and the
/// list of them in its tooltip, which is made when it is asked for.
class ChordButtonSigns : public QObject
{
    Q_OBJECT

public:
    /// None is owned. The buttons are the slots from 1 on.
    ChordButtonSigns(const QList<QPushButton*>& buttons, const StoreAndRecall* memory,
                     const EngineRelay& relay);

    /// The memory has changed. Many calls in a row cost one look at the chords.
    void refreshSoon();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    bool sounds(int slot) const;
    QString tooltip(int slot) const;
    void placeBar(int slot) const;

    QList<QPushButton*> mButtons;
    QList<QWidget*> mBars; // children of the buttons
    const StoreAndRecall* mMemory;
    QTimer mSoon;
};
