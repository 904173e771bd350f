#pragma once

#include "app/SerializableRoot.h"
#include "model/OrloRatio.h"
#include "model/PublishedRatio.h"

#include <QColor>
#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>

#include <memory>

class OrloBall;
class OrloEvent;
class PdPlayer;

/// The lattice: a tree of balls, each a pitch by its path from the root, and a map from absolute
/// ratio to ball, so that a sounding pitch finds its ball. Lives in "orlo_v2.json", which is
/// written only when it is made from the defaults.
///
/// Graphical thread only, but for publishedTransposition(). The player reports to it through
/// signals; it marks the balls and asks for a free node and a card where a pitch has no ball.
class Orlo : public SerializableRoot
{
    Q_OBJECT

public:
    explicit Orlo(QObject* parent = nullptr);

    /// Reads or makes the lattice file, then connects to the player. False when the file is there
    /// and cannot be used.
    virtual bool init(PdPlayer* player);
    using SerializableRoot::init;

    void read(const QJsonObject& json) override;
    void write(QJsonObject& json) const override;
    /// The default lattice of 361 balls.
    void initWithDefaults() override;

    /// After every change of lattice, transposition or base frequency. The four sets of marked
    /// ratios survive it and move onto whichever balls now have those pitches.
    void buildBallMap();
    void buildBallMapFrom(OrloBall* ball);
    /// By absolute ratio; null when the pitch has no ball.
    OrloBall* ballFromRatio(const OrloRatio& ratio) const;

    /// The leaves of a ball: the primes 5 to 31, down and up.
    void addLeaves(OrloBall* ball);
    void addLeaf(OrloBall* ball, int prime);

    /// By the absolute value; opaque white for a prime without a colour.
    QColor lookupColor(int prime) const;

    /// True for the eleven primes and their negatives.
    static bool isValidPrime(int step);
    /// The octave-reduced ratio of a step, in floating point. Not checked: 0 and 1 give -1.0.
    static float primeRatio(int step);
    /// removeOppositePairs().
    void simplifyTransposeSteps();
    /// Whether the lattice may be transposed by this further ratio: 1/1 stays from 20 Hz to 20 kHz,
    /// and every ball's ratio still fits in 64 bits.
    bool canTransposeTo(const OrloRatio& candidate) const;
    /// Switches the balls reached by a step of this prime, and all behind them. A ball keeps no
    /// memory of why it was disabled: the last call wins.
    void togglePrimeFrom(OrloBall* ball, int prime, bool on);

    OrloBall* rootBall() const { return mRootBall.get(); }
    /// For a page that draws the tree: a tree that was replaced lives as long as it is held, but no
    /// longer than the lattice.
    std::shared_ptr<const OrloBall> tree() const { return mRootBall; }
    const OrloRatio& transposition() const { return mTransposition; }
    const QList<int>& transposeSteps() const { return mTransposeSteps; }
    float baseFrequency() const { return mBaseFrequency; }
    const QHash<OrloRatio, OrloBall*>& ballMap() const { return mBallMap; }
    const QSet<OrloRatio>& playingRatios() const { return mPlayingRatios; }
    const QSet<OrloRatio>& selectedRatios() const { return mSelectedRatios; }

    /// The transposition for any thread, without a lock.
    PublishedRatio::Value publishedTransposition() const { return mPublishedTransposition.read(); }

    /// The step code of a transposition by a ratio that is no single step.
    static constexpr int FREE_TRANSPOSITION = 1000;

public slots:
    void onNoteToggled(OrloRatio ratio, bool on);
    void onNodeSelected(OrloRatio ratio, bool on);
    void onNodeHold(OrloRatio ratio, bool on);
    void onNodeAltered(OrloRatio ratio, bool on);
    void onRemoveNodeInStack(OrloRatio ratio);
    /// `step`: 0 for a reset, FREE_TRANSPOSITION, or one signed prime step.
    void onTransposed(OrloRatio ratio, int step);
    void onBaseFrequencyChanged(float frequency);
    /// Prime 1 stands for the whole lattice.
    void onPrimeEnabledToggled(int prime, bool on);
    void afterMemoryRecall();

signals:
    void transposeOrBaseFrequencyChanged();
    void eventReceived(const OrloEvent* event) const;
    void showCard(OrloRatio ratio);
    void hideCard(OrloRatio ratio);
    void addNodeToStack(OrloRatio ratio);
    void showNodesInStack();
    void hideNodeInStack(OrloRatio ratio);
    void toggleNodeInStack(OrloRatio ratio, bool on);
    void removeNodeInStack(OrloRatio ratio);
    void selectNodeInStack(OrloRatio ratio, bool on);
    void setHoldNodeInStack(OrloRatio ratio, bool on);
    void setAlteredNodeInStack(OrloRatio ratio, bool on);
    void resetNodeStack();

private:
    void replaceRoot();
    OrloBall* addTreeBall(const QString& path);
    void setTransposition(const OrloRatio& ratio);
    void markSurvivors();
    static void setContained(QSet<OrloRatio>& set, const OrloRatio& ratio, bool contained);

    std::shared_ptr<OrloBall> mRootBall; // a child QObject too
    OrloRatio mTransposition{1, 1};
    PublishedRatio mPublishedTransposition;
    float mBaseFrequency = 440.0F; // Hz of ratio 1/1
    QList<int> mTransposeSteps;
    QMap<int, QColor> mPrimeColors;
    QHash<OrloRatio, OrloBall*> mBallMap; // by absolute ratio
    QSet<OrloRatio> mPlayingRatios;
    QSet<OrloRatio> mSelectedRatios;
    QSet<OrloRatio> mHoldRatios;
    QSet<OrloRatio> mAlteredRatios;
};
