#pragma once

#include "model/OrloRatio.h"

#include <QList>

#include <cstddef>
#include <iterator>
#include <vector>

/// Ratios in the order in which they came, each once. Whatever its length, asking, appending and
/// removing take constant time. One thread only.
///
/// The storage is made by reserve(); only a list that grows beyond it allocates. Each ratio has a
/// place, a number below the capacity that stays its own until it is removed; what is kept for it
/// elsewhere goes by it (RatioTable).
class RatioList
{
    struct Node
    {
        OrloRatio ratio;
        int next = NONE; // in the order; of a free node the next free one
        int previous = NONE;
        int nextInBucket = NONE;
    };

public:
    static constexpr int NONE = -1;

    class const_iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = OrloRatio;
        using difference_type = std::ptrdiff_t;
        using pointer = const OrloRatio*;
        using reference = const OrloRatio&;

        const_iterator() = default;
        const_iterator(const RatioList* list, int place)
            : mList(list)
            , mPlace(place)
        {
        }
        reference operator*() const { return mList->node(mPlace).ratio; }
        const_iterator& operator++()
        {
            mPlace = mList->node(mPlace).next;
            return *this;
        }
        const_iterator operator++(int) { return std::exchange(*this, std::next(*this)); }
        bool operator==(const const_iterator&) const = default;
        int place() const { return mPlace; }

    private:
        const RatioList* mList = nullptr;
        int mPlace = NONE;
    };

    /// [stopped] Makes the storage. Allocates when the capacity grows.
    void reserve(int capacity);

    /// [audio]
    bool contains(const OrloRatio& ratio) const { return placeOf(ratio) != NONE; }
    /// [audio] NONE when it is not there.
    int placeOf(const OrloRatio& ratio) const;
    /// [audio] Returns its place. A ratio that is there stays where it is.
    int append(const OrloRatio& ratio);
    /// [audio] Returns the place that it had, or NONE. The ratio may be the very element that goes.
    int remove(const OrloRatio& ratio);
    /// [audio] Keeps the storage.
    void clear();

    /// [audio]
    bool isEmpty() const { return mFirst == NONE; }
    /// [audio] How many find room without an allocation.
    int capacity() const { return static_cast<int>(mNodes.size()); }
    /// [audio] The list must not be empty.
    const OrloRatio& first() const { return node(mFirst).ratio; }
    /// [audio] In the order in which they came.
    const_iterator begin() const { return {this, mFirst}; }
    /// [audio] Behind the last.
    const_iterator end() const { return {this, NONE}; }
    /// [audio] Allocates.
    QList<OrloRatio> toList() const { return QList<OrloRatio>(begin(), end()); }

private:
    Node& node(int place) { return mNodes[static_cast<std::size_t>(place)]; }
    const Node& node(int place) const { return mNodes[static_cast<std::size_t>(place)]; }
    int& bucketOf(const OrloRatio& ratio);

    std::vector<Node> mNodes;
    std::vector<int> mBuckets; // first nodes; a power of two of them
    int mFirst = NONE;
    int mLast = NONE;
    int mFree = NONE;
};
