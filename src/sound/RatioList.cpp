#include "sound/RatioList.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

constexpr int SMALLEST = 16;

std::size_t bucketNumber(const OrloRatio& ratio, std::size_t buckets)
{
    // The hash of neighbouring ratios differs in its low bits only; the product spreads them.
    return (qHash(ratio) * 0x9E3779B97F4A7C15ULL >> 32) & (buckets - 1);
}

} // namespace

int& RatioList::bucketOf(const OrloRatio& ratio)
{
    return mBuckets[bucketNumber(ratio, mBuckets.size())];
}

void RatioList::reserve(int capacity)
{
    const int former = this->capacity();
    if (capacity <= former)
        return;
    mNodes.resize(static_cast<std::size_t>(capacity));
    for (int place = capacity - 1; place >= former; --place)
        node(place).next = std::exchange(mFree, place);
    mBuckets.assign(std::bit_ceil(2 * mNodes.size()), NONE);
    for (int place = mFirst; place != NONE; place = node(place).next)
        node(place).nextInBucket = std::exchange(bucketOf(node(place).ratio), place);
}

int RatioList::placeOf(const OrloRatio& ratio) const
{
    if (mBuckets.empty())
        return NONE;
    int place = mBuckets[bucketNumber(ratio, mBuckets.size())];
    while (place != NONE && !(node(place).ratio == ratio))
        place = node(place).nextInBucket;
    return place;
}

int RatioList::append(const OrloRatio& ratio)
{
    if (const int place = placeOf(ratio); place != NONE)
        return place;
    if (mFree == NONE)
        reserve(std::max(SMALLEST, 2 * capacity()));
    const int place = mFree;
    Node& added = node(place);
    mFree = added.next;
    added.ratio = ratio;
    added.nextInBucket = std::exchange(bucketOf(ratio), place);
    added.next = NONE;
    added.previous = mLast;
    (mLast == NONE ? mFirst : node(mLast).next) = place;
    mLast = place;
    return place;
}

int RatioList::remove(const OrloRatio& ratio)
{
    const int place = placeOf(ratio);
    if (place == NONE)
        return NONE;
    Node& removed = node(place);
    int* link = &bucketOf(ratio);
    while (*link != place)
        link = &node(*link).nextInBucket;
    *link = removed.nextInBucket;
    (removed.previous == NONE ? mFirst : node(removed.previous).next) = removed.next;
    (removed.next == NONE ? mLast : node(removed.next).previous) = removed.previous;
    removed.next = std::exchange(mFree, place);
    return place;
}

void RatioList::clear()
{
    while (!isEmpty())
        remove(first());
}
