#include "model/OrloPathUnlimited.h"

#include "model/OrloPath.h"
#include "model/OrloRatio.h"
#include "model/PathSteps.h"

OrloPathUnlimited::OrloPathUnlimited()
{
    mSteps[0] = 0;
}

OrloPathUnlimited::OrloPathUnlimited(const QString& text)
{
    storeFromString(text);
}

OrloPathUnlimited::OrloPathUnlimited(signed char step)
{
    mSteps[0] = step;
    mSteps[1] = 0;
}

OrloPathUnlimited::OrloPathUnlimited(const OrloPathUnlimited& other)
{
    PathSteps::copy(mSteps, other.mSteps);
}

OrloPathUnlimited::OrloPathUnlimited(const OrloPath* path)
{
    PathSteps::copy(mSteps, path->toCharArray());
}

OrloPathUnlimited& OrloPathUnlimited::operator=(const OrloPathUnlimited& other)
{
    if (this != &other)
        PathSteps::copy(mSteps, other.mSteps);
    return *this;
}

void OrloPathUnlimited::storeFromString(const QString& text)
{
    PathSteps::store(mSteps, LIMIT, text);
}

OrloPathUnlimited OrloPathUnlimited::operator+(const OrloPathUnlimited& other) const
{
    OrloPathUnlimited sum(*this);
    PathSteps::append(sum.mSteps, other.mSteps, LIMIT);
    return sum;
}

bool OrloPathUnlimited::operator==(const OrloPathUnlimited& other) const
{
    return PathSteps::equal(mSteps, other.mSteps);
}

bool OrloPathUnlimited::isValid() const
{
    return mSteps[0] != PathSteps::INVALID;
}

int OrloPathUnlimited::length() const
{
    return PathSteps::length(mSteps);
}

QString OrloPathUnlimited::toString() const
{
    return parseToString();
}

QString OrloPathUnlimited::parseToString() const
{
    return PathSteps::toString(mSteps);
}

QList<int> OrloPathUnlimited::toList() const
{
    return PathSteps::toList(mSteps);
}

OrloRatio OrloPathUnlimited::toRatio() const
{
    return OrloRatio(*this);
}

void OrloPathUnlimited::addLeaf(signed char step)
{
    PathSteps::addLeaf(mSteps, LIMIT, step);
}

void OrloPathUnlimited::removeLeaf()
{
    PathSteps::removeLeaf(mSteps, LIMIT);
}

int OrloPathUnlimited::getHighestPrime() const
{
    int highest = 1;
    for (const int step : toList())
        highest = qMax(highest, qAbs(step));
    return highest;
}

size_t qHash(const OrloPathUnlimited& path, size_t seed)
{
    return PathSteps::hash(path.toCharArray(), seed);
}
