#include "model/OrloPath.h"

#include "model/OrloRatio.h"
#include "model/PathSteps.h"

OrloPath::OrloPath()
{
    mSteps[0] = 0;
}

OrloPath::OrloPath(const QString& text)
{
    storeFromString(text);
}

OrloPath::OrloPath(signed char step)
{
    mSteps[0] = step;
    mSteps[1] = 0;
}

OrloPath::OrloPath(const OrloPath& other)
{
    PathSteps::copy(mSteps, other.mSteps);
}

OrloPath& OrloPath::operator=(const OrloPath& other)
{
    if (this != &other)
        PathSteps::copy(mSteps, other.mSteps);
    return *this;
}

void OrloPath::storeFromString(const QString& text)
{
    PathSteps::store(mSteps, LIMIT, text);
}

OrloPath OrloPath::operator+(const OrloPath& other) const
{
    OrloPath sum(*this);
    PathSteps::append(sum.mSteps, other.mSteps, LIMIT);
    return sum;
}

bool OrloPath::operator==(const OrloPath& other) const
{
    return PathSteps::equal(mSteps, other.mSteps);
}

bool OrloPath::isValid() const
{
    return mSteps[0] != PathSteps::INVALID;
}

int OrloPath::length() const
{
    return PathSteps::length(mSteps);
}

QString OrloPath::toString() const
{
    return parseToString();
}

QString OrloPath::parseToString() const
{
    return PathSteps::toString(mSteps);
}

QList<int> OrloPath::toList() const
{
    return PathSteps::toList(mSteps);
}

OrloRatio OrloPath::toRatio() const
{
    return OrloRatio(*this);
}

void OrloPath::addLeaf(signed char step)
{
    PathSteps::addLeaf(mSteps, LIMIT, step);
}

void OrloPath::removeLeaf()
{
    PathSteps::removeLeaf(mSteps, LIMIT);
}

size_t qHash(const OrloPath& path, size_t seed)
{
    return PathSteps::hash(path.toCharArray(), seed);
}
