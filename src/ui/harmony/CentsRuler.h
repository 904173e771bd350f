#pragma once

#include "harmony/Harmony.h"

#include <QWidget>

/// Notes that sound on a line of cents from the lowest of them: an octave, or as many as they span, with the
/// twelve equal steps of each as a grid. A glided note is drawn hollow, and its ratio as near. [gui]
class CentsRuler : public QWidget
{
    Q_OBJECT

public:
    explicit CentsRuler(QWidget* parent = nullptr);

    void setHarmony(const Harmony& harmony);

    struct Tick
    {
        double cents = 0.0;
        QString label; // the ratio, or cents where that is long
        bool isExact = true;
    };
    const QList<Tick>& ticks() const { return mTicks; }
    int octaves() const { return mOctaves; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double xOf(double cents) const;
    void drawGrid(QPainter& painter) const;
    void drawTicks(QPainter& painter) const;
    void drawLabels(QPainter& painter) const;

    QList<Tick> mTicks; // ascending
    int mOctaves = 1;
};
