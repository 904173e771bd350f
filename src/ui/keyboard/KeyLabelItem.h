#pragma once

#include "model/OrloRatio.h"

#include <QGraphicsObject>
#include <QHash>
#include <QList>
#include <QString>

class OrloWidget;

/// All labels of one page. It lies over the balls and catches no press. [gui]
class KeyLabelItem : public QGraphicsObject
{
    Q_OBJECT

public:
    /// Takes its places from the balls, which stay where they are as long as their scene.
    KeyLabelItem(const OrloWidget& lattice, const QHash<OrloRatio, QString>& names);

    QRectF boundingRect() const override { return mBounds; }
    QPainterPath shape() const override { return {}; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    QStringList texts() const;

private:
    struct Label
    {
        QString text;
        QRectF place; // in the scene
        double height;
    };
    QList<Label> mLabels;
    QRectF mBounds;
};
