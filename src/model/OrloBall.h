#pragma once

#include "model/OrloPath.h"

#include <QColor>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>

/// One pitch of the lattice: its path from the root, its children by signed step, and what the
/// player reported of it. Graphical thread only. The model of every widget that shows the ball.
class OrloBall : public QObject
{
    Q_OBJECT

public:
    /// A cross connection to a ball elsewhere in the tree, drawn as a strut.
    struct Link
    {
        QColor color;
        OrloPath path;
    };

    OrloBall(const OrloPath& path, const QColor& color, QObject* parent);

    /// The ball object of the lattice file, recursively. Path and colour are not stored: they
    /// follow from the step that leads here.
    virtual void read(const QJsonObject& json);
    virtual void write(QJsonObject& json) const;

    /// The child's QObject parent must be this ball.
    void addChild(int step, OrloBall* child);
    OrloBall* childAtPrime(int step) const;
    void addLink(int prime, const QString& path);

    const OrloPath& path() const { return mPath; }
    const QColor& color() const { return mColor; }
    /// By the signed step that leads to the child.
    const QMap<int, OrloBall*>& children() const { return mChildren; }
    /// By prime.
    const QMap<int, Link>& links() const { return mLinks; }

    bool isPlaying() const { return mPlaying; }
    bool isEnabled() const { return mEnabled; }
    bool isSelected() const { return mSelected; }
    bool isHold() const { return mHold; }
    bool isAltered() const { return mAltered; }

    void setPlaying(bool on);
    void setSelected(bool on);
    void setHold(bool on);
    void setAltered(bool on);
    void togglePlaying();
    /// Reaches the whole subtree; children report before their parent.
    void setEnabled(bool on);

    /// What lastAbsStep and highestAbsStep return for a ball that has a step above 3 of its own.
    static constexpr int LEAF_STEP = 32;

    /// Absolute value of the path's last step; 1 for the root.
    int lastStep() const;
    /// The path as seen from the absolute origin: transposition steps, then the ball's own, with
    /// opposite pairs removed.
    QList<int> absPathSteps() const;
    /// The step that colours the ball in the absolute mode: its 2 or 3 whenever it has one.
    int lastAbsStep() const;
    /// The same for the second absolute mode: the highest step.
    int highestAbsStep() const;

signals:
    void playingChanged(bool on);
    void enabledChanged(bool on);
    void selectedChanged(bool on);
    void holdChanged(bool on);
    void alteredChanged(bool on);

private:
    bool hasStepAboveThree() const;

    OrloPath mPath;
    QColor mColor;
    QMap<int, OrloBall*> mChildren;
    QMap<int, Link> mLinks;
    bool mPlaying = false;
    bool mEnabled = true;
    bool mSelected = false;
    bool mHold = false;
    bool mAltered = false;
};
