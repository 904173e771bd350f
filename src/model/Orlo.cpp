#include "model/Orlo.h"

#include "app/Accessors.h"
#include "model/DefaultLattice.h"
#include "model/DefaultPrimeColors.h"
#include "model/OppositeSteps.h"
#include "model/OrloBall.h"
#include "model/OrloPath.h"

#include <QDebug>
#include <QJsonArray>
#include <QPointer>

#include <limits>

namespace {

void clearMarks(OrloBall* ball)
{
    ball->setPlaying(false);
    ball->setSelected(false);
    ball->setHold(false);
    ball->setAltered(false);
}

/// For a tree that hears no more of the player.
void clearAllMarks(OrloBall* ball)
{
    clearMarks(ball);
    for (OrloBall* child : ball->children())
        clearAllMarks(child);
}

/// The primes that are switched off stay so.
void copyEnabled(const OrloBall* from, OrloBall* to)
{
    to->setEnabled(from->isEnabled());
    const QMap<int, OrloBall*>& children = to->children();
    for (auto it = children.begin(); it != children.end(); ++it) {
        if (const OrloBall* former = from->childAtPrime(it.key()))
            copyEnabled(former, it.value());
    }
}

} // namespace

Orlo::Orlo(QObject* parent)
    : SerializableRoot(parent)
{
    setSaveOnTerm(false);
    replaceRoot();
}

bool Orlo::init(PdPlayer* player)
{
    if (!SerializableRoot::init(QStringLiteral("orlo_v2.json")))
        return false;
    if (app::parts().connectLattice)
        app::parts().connectLattice(player, this);
    return true;
}

void Orlo::read(const QJsonObject& json)
{
    const QJsonArray colors = json.value(QStringLiteral("colors")).toArray();
    for (const QJsonValue& entry : colors) {
        const double prime = entry[QStringLiteral("prime")].toDouble();
        const auto color = entry[QStringLiteral("color")].toVariant().value<QColor>();
        if (qAbs(prime) <= std::numeric_limits<int>::max() && color.isValid())
            mPrimeColors.insert(static_cast<int>(prime), color);
    }
    const std::shared_ptr<const OrloBall> former = tree();
    replaceRoot();
    mRootBall->read(json.value(QStringLiteral("root")).toObject());
    copyEnabled(former.get(), mRootBall.get());
    buildBallMap();
}

void Orlo::write(QJsonObject& json) const
{
    QJsonArray colors;
    for (auto it = mPrimeColors.begin(); it != mPrimeColors.end(); ++it) {
        colors.append(QJsonObject{{QStringLiteral("prime"), it.key()},
                                  {QStringLiteral("color"), it.value().name(QColor::HexRgb)}});
    }
    json.insert(QStringLiteral("colors"), colors);
    QJsonObject root;
    mRootBall->write(root);
    json.insert(QStringLiteral("root"), root);
}

void Orlo::initWithDefaults()
{
    for (const DefaultPrimeColor& entry : DEFAULT_PRIME_COLORS)
        mPrimeColors.insert(entry.prime, QColor(QLatin1StringView(entry.color)));
    qDebug() << "Orlo::initWithDefaults - mPrimeColors:" << mPrimeColors;

    replaceRoot();
    addLeaves(rootBall());
    for (const defaultlattice::TreeBall& entry : defaultlattice::BALLS) {
        OrloBall* ball = addTreeBall(QLatin1StringView(entry.path));
        if (entry.octaveLink)
            ball->addLink(2, QLatin1StringView(entry.octaveLink));
        addLeaves(ball);
    }
    buildBallMap();
}

void Orlo::replaceRoot()
{
    mBallMap.clear();
    if (mRootBall)
        clearAllMarks(rootBall());
    const QPointer<OrloBall> root(new OrloBall(OrloPath(QStringLiteral("/")), lookupColor(1), this));
    mRootBall.reset(root.data(), [root](OrloBall*) { delete root.data(); });
}

OrloBall* Orlo::addTreeBall(const QString& pathText)
{
    const OrloPath path(pathText);
    const QList<int> steps = path.toList();
    OrloBall* parent = rootBall();
    for (qsizetype i = 0; i + 1 < steps.size(); ++i)
        parent = parent->childAtPrime(steps[i]);
    auto* ball = new OrloBall(path, lookupColor(steps.last()), parent);
    parent->addChild(steps.last(), ball);
    return ball;
}

void Orlo::addLeaves(OrloBall* ball)
{
    for (const int prime : defaultlattice::LEAF_PRIMES)
        addLeaf(ball, prime);
}

void Orlo::addLeaf(OrloBall* ball, int prime)
{
    for (const int step : {-prime, prime}) {
        OrloPath path(ball->path()); // a fresh one: a full path takes no leaf, and must not lose one
        path.addLeaf(static_cast<signed char>(step));
        ball->addChild(step, new OrloBall(path, lookupColor(step), ball));
    }
}

QColor Orlo::lookupColor(int prime) const
{
    return mPrimeColors.value(prime < 0 ? oppositeStep(prime) : prime, Qt::white);
}

void Orlo::buildBallMap()
{
    mBallMap.clear();
    buildBallMapFrom(rootBall());
    emit resetNodeStack();
    markSurvivors();
}

void Orlo::buildBallMapFrom(OrloBall* ball)
{
    OrloRatio key(mTransposition);
    key *= OrloRatio(OrloRatio::productOfSteps(ball->path().toCharArray()));
    mBallMap.insert(key, ball);
    clearMarks(ball);
    for (OrloBall* child : ball->children())
        buildBallMapFrom(child);
}

void Orlo::markSurvivors()
{
    for (const OrloRatio& ratio : std::as_const(mPlayingRatios)) {
        if (OrloBall* ball = ballFromRatio(ratio)) {
            ball->setPlaying(true);
            emit hideCard(ratio);
        } else {
            emit addNodeToStack(ratio);
            emit toggleNodeInStack(ratio, true);
            emit showCard(ratio);
        }
    }
    for (const OrloRatio& ratio : std::as_const(mSelectedRatios)) {
        if (OrloBall* ball = ballFromRatio(ratio)) {
            ball->setSelected(true);
        } else {
            emit addNodeToStack(ratio);
            emit selectNodeInStack(ratio, true);
        }
    }
    for (const OrloRatio& ratio : std::as_const(mHoldRatios)) {
        if (OrloBall* ball = ballFromRatio(ratio)) {
            ball->setHold(true);
        } else {
            emit addNodeToStack(ratio);
            emit setHoldNodeInStack(ratio, true);
        }
    }
    for (const OrloRatio& ratio : std::as_const(mAlteredRatios)) {
        if (OrloBall* ball = ballFromRatio(ratio)) {
            ball->setAltered(true);
        } else {
            emit addNodeToStack(ratio);
            emit setAlteredNodeInStack(ratio, true);
        }
    }
}

OrloBall* Orlo::ballFromRatio(const OrloRatio& ratio) const
{
    return mBallMap.value(ratio, nullptr);
}

void Orlo::setContained(QSet<OrloRatio>& set, const OrloRatio& ratio, bool contained)
{
    if (contained)
        set.insert(ratio);
    else
        set.remove(ratio);
}

void Orlo::onNoteToggled(OrloRatio ratio, bool on)
{
    OrloBall* ball = ballFromRatio(ratio);
    setContained(mPlayingRatios, ratio, on);
    if (ball) {
        ball->setPlaying(on);
    } else if (on) {
        emit addNodeToStack(ratio);
        emit toggleNodeInStack(ratio, true);
        emit showCard(ratio);
    } else {
        emit toggleNodeInStack(ratio, false);
        emit hideCard(ratio);
    }
}

void Orlo::onNodeSelected(OrloRatio ratio, bool on)
{
    OrloBall* ball = ballFromRatio(ratio);
    setContained(mSelectedRatios, ratio, on);
    if (ball)
        ball->setSelected(on);
    else
        emit selectNodeInStack(ratio, on);
}

void Orlo::onNodeHold(OrloRatio ratio, bool on)
{
    OrloBall* ball = ballFromRatio(ratio);
    setContained(mHoldRatios, ratio, on);
    if (ball)
        ball->setHold(on);
    else
        emit setHoldNodeInStack(ratio, on);
}

void Orlo::onNodeAltered(OrloRatio ratio, bool on)
{
    OrloBall* ball = ballFromRatio(ratio);
    setContained(mAlteredRatios, ratio, on);
    if (ball)
        ball->setAltered(on);
    else
        emit setAlteredNodeInStack(ratio, on);
}

void Orlo::onRemoveNodeInStack(OrloRatio ratio)
{
    emit removeNodeInStack(ratio);
}

bool Orlo::isValidPrime(int step)
{
    return OrloConstants::isValidPrime(step);
}

float Orlo::primeRatio(int step)
{
    const auto& ratios = OrloConstants::PRIME_RATIOS;
    return step > 0 ? ratios.at(static_cast<size_t>(step)) : 1.0F / ratios.at(static_cast<size_t>(-step));
}

void Orlo::onBaseFrequencyChanged(float frequency)
{
    if (frequency == mBaseFrequency)
        return;
    mBaseFrequency = frequency;
    buildBallMap();
    emit transposeOrBaseFrequencyChanged();
}

void Orlo::onPrimeEnabledToggled(int prime, bool on)
{
    if (prime == 1)
        mRootBall->setEnabled(on);
    else
        togglePrimeFrom(rootBall(), prime, on);
}

void Orlo::togglePrimeFrom(OrloBall* ball, int prime, bool on)
{
    for (const int step : {prime, oppositeStep(prime)}) {
        if (OrloBall* child = ball->childAtPrime(step))
            child->setEnabled(on);
    }
    for (OrloBall* child : ball->children())
        togglePrimeFrom(child, prime, on);
}

void Orlo::afterMemoryRecall()
{
    emit showNodesInStack();
}
