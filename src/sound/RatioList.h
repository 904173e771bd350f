#pragma once

#include "model/OrloRatio.h"

#include <QHash>
#include <QList>

#include <list>

/// Ratios in the order in which they came, each once. Whatever its length, asking, appending and
/// removing take constant time. One thread only; appending allocates.
class RatioList
{
public:
    using const_iterator = std::list<OrloRatio>::const_iterator;

    bool contains(const OrloRatio& ratio) const { return mPlaces.contains(ratio); }
    /// Does nothing to a ratio that is there.
    void append(const OrloRatio& ratio);
    void remove(const OrloRatio& ratio);
    void clear();

    bool isEmpty() const { return mOrder.empty(); }
    const OrloRatio& first() const { return mOrder.front(); }
    const_iterator begin() const { return mOrder.begin(); }
    const_iterator end() const { return mOrder.end(); }
    QList<OrloRatio> toList() const { return QList<OrloRatio>(begin(), end()); }

private:
    std::list<OrloRatio> mOrder;
    QHash<OrloRatio, const_iterator> mPlaces;
};
