#pragma once

#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

/// Resets a node by its relative ratio; a value other than 0 also deselects it.
class OrloNodeResetEvent : public OrloEvent
{
public:
    OrloNodeResetEvent(const OrloRatio& ratio, float value)
        : OrloEvent(NodeReset, value)
        , mRatio(ratio)
    {
    }

    const OrloRatio& ratio() const { return mRatio; }

private:
    OrloRatio mRatio;
};
