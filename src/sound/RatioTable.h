#pragma once

#include "sound/RatioList.h"

#include <vector>

/// A value for each of some ratios, in the order in which they came. What holds for RatioList holds
/// here: one thread, constant time, and no allocation up to the capacity that was reserved. A reference
/// to a value holds until the table grows beyond that.
template <class T>
class RatioTable
{
public:
    class const_iterator
    {
    public:
        const_iterator(const RatioTable* table, RatioList::const_iterator at)
            : mTable(table)
            , mAt(at)
        {
        }
        const T& operator*() const { return mTable->mValues[static_cast<std::size_t>(mAt.place())]; }
        const_iterator& operator++()
        {
            ++mAt;
            return *this;
        }
        bool operator==(const const_iterator&) const = default;

    private:
        const RatioTable* mTable;
        RatioList::const_iterator mAt;
    };

    /// [stopped] Makes the storage.
    void reserve(int capacity)
    {
        mRatios.reserve(capacity);
        mValues.resize(static_cast<std::size_t>(mRatios.capacity()));
    }
    /// [audio] Null when it is not there.
    const T* find(const OrloRatio& ratio) const
    {
        const int place = mRatios.placeOf(ratio);
        return place == RatioList::NONE ? nullptr : &mValues[static_cast<std::size_t>(place)];
    }
    /// [audio] `otherwise` when it is not there.
    T value(const OrloRatio& ratio, const T& otherwise) const
    {
        const T* found = find(ratio);
        return found ? *found : otherwise;
    }
    /// [audio] A ratio that is not there comes in, with the value of T().
    T& operator[](const OrloRatio& ratio)
    {
        const bool isNew = !mRatios.contains(ratio);
        const auto place = static_cast<std::size_t>(mRatios.append(ratio));
        if (place >= mValues.size())
            mValues.resize(static_cast<std::size_t>(mRatios.capacity()));
        if (isNew)
            mValues[place] = T();
        return mValues[place];
    }
    /// [audio] A ratio that is not there changes nothing.
    void remove(const OrloRatio& ratio) { mRatios.remove(ratio); }
    /// [audio] Keeps the storage.
    void clear() { mRatios.clear(); }

    /// [audio] The first value.
    const_iterator begin() const { return {this, mRatios.begin()}; }
    /// [audio] Behind the last.
    const_iterator end() const { return {this, mRatios.end()}; }

private:
    RatioList mRatios;
    std::vector<T> mValues; // by the ratio's place
};
