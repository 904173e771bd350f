#include "model/OrloBall.h"

#include "app/Accessors.h"
#include "model/OppositeSteps.h"
#include "model/Orlo.h"

#include <algorithm>

namespace {

/// The lattice that this ball is in: the object at the top of the tree of owners.
const Orlo* latticeOf(const OrloBall* ball)
{
    for (const QObject* owner = ball->parent(); owner; owner = owner->parent()) {
        if (const auto* orlo = qobject_cast<const Orlo*>(owner))
            return orlo;
    }
    return app::orlo();
}

} // namespace

OrloBall::OrloBall(const OrloPath& path, const QColor& color, QObject* parent)
    : QObject(parent)
    , mPath(path)
    , mColor(color)
{
}

void OrloBall::read(const QJsonObject& json)
{
    const Orlo* orlo = latticeOf(this);
    const QJsonObject children = json.value(QStringLiteral("children")).toObject();
    for (auto it = children.begin(); it != children.end(); ++it) {
        const int step = it.key().toInt();
        OrloPath path(mPath);
        path.addLeaf(static_cast<signed char>(step));
        auto* child = new OrloBall(path, orlo->lookupColor(step), this);
        child->read(it.value().toObject());
        addChild(step, child);
    }
    const QJsonObject links = json.value(QStringLiteral("links")).toObject();
    for (auto it = links.begin(); it != links.end(); ++it)
        addLink(it.key().toInt(), it.value().toString());
}

void OrloBall::write(QJsonObject& json) const
{
    QJsonObject children;
    for (auto it = mChildren.begin(); it != mChildren.end(); ++it) {
        QJsonObject child;
        it.value()->write(child);
        children.insert(QString::number(it.key()), child);
    }
    if (!children.isEmpty())
        json.insert(QStringLiteral("children"), children);

    QJsonObject links;
    for (auto it = mLinks.begin(); it != mLinks.end(); ++it)
        links.insert(QString::number(it.key()), it.value().path.toString());
    if (!links.isEmpty())
        json.insert(QStringLiteral("links"), links);
}

void OrloBall::addChild(int step, OrloBall* child)
{
    mChildren.insert(step, child);
}

OrloBall* OrloBall::childAtPrime(int step) const
{
    return mChildren.value(step, nullptr);
}

void OrloBall::addLink(int prime, const QString& path)
{
    mLinks.insert(prime, Link{latticeOf(this)->lookupColor(prime), OrloPath(path)});
}

void OrloBall::setPlaying(bool on)
{
    if (mPlaying == on)
        return;
    mPlaying = on;
    emit playingChanged(on);
}

void OrloBall::setSelected(bool on)
{
    if (mSelected == on)
        return;
    mSelected = on;
    emit selectedChanged(on);
}

void OrloBall::setHold(bool on)
{
    if (mHold == on)
        return;
    mHold = on;
    emit holdChanged(on);
}

void OrloBall::setAltered(bool on)
{
    if (mAltered == on)
        return;
    mAltered = on;
    emit alteredChanged(on);
}

void OrloBall::togglePlaying()
{
    setPlaying(!mPlaying);
}

void OrloBall::setEnabled(bool on)
{
    if (mEnabled == on)
        return;
    mEnabled = on;
    for (OrloBall* child : std::as_const(mChildren))
        child->setEnabled(on);
    emit enabledChanged(on);
}

int OrloBall::lastStep() const
{
    const int length = mPath.length();
    return length == 0 ? 1 : qAbs(static_cast<int>(mPath.toCharArray()[length - 1]));
}

QList<int> OrloBall::absPathSteps() const
{
    QList<int> steps = latticeOf(this)->transposeSteps();
    steps += mPath.toList();
    removeOppositePairs(steps);
    return steps;
}

int OrloBall::lastAbsStep() const
{
    const QList<int> steps = absPathSteps();
    if (steps.isEmpty())
        return 1;
    if (hasStepAboveThree())
        return LEAF_STEP;
    int highest = 0;
    int highestBelowFour = 0;
    for (const int step : steps) {
        highest = qMax(highest, qAbs(step));
        if (qAbs(step) < 4)
            highestBelowFour = qMax(highestBelowFour, qAbs(step));
    }
    return highestBelowFour > 0 ? highestBelowFour : highest;
}

int OrloBall::highestAbsStep() const
{
    const QList<int> steps = absPathSteps();
    if (steps.isEmpty())
        return 1;
    if (hasStepAboveThree())
        return LEAF_STEP;
    int highest = 0;
    for (const int step : steps)
        highest = qMax(highest, qAbs(step));
    return highest;
}

bool OrloBall::hasStepAboveThree() const
{
    const QList<int> steps = mPath.toList();
    return std::any_of(steps.begin(), steps.end(), [](int step) { return qAbs(step) > 3; });
}
