#include "sound/RatioList.h"

void RatioList::append(const OrloRatio& ratio)
{
    if (!contains(ratio))
        mPlaces.insert(ratio, mOrder.insert(mOrder.end(), ratio));
}

void RatioList::remove(const OrloRatio& ratio)
{
    // The ratio may be the very element that goes.
    const auto place = mPlaces.constFind(ratio);
    if (place == mPlaces.constEnd())
        return;
    const const_iterator element = place.value();
    mPlaces.erase(place);
    mOrder.erase(element);
}

void RatioList::clear()
{
    mPlaces.clear();
    mOrder.clear();
}
