#pragma once

#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

/// Resets a node by its relative ratio; a value other than 0 also deselects it.
class OrloNodeResetEvent : public OrloEvent
{
public:
    /// [any]
    OrloNodeResetEvent(const OrloRatio& ratio, float value)
        : OrloEvent(NodeReset, value)
        , mRatio(ratio)
    {
    }

    /// [any]
    const OrloRatio& ratio() const { return mRatio; }

private:
    OrloRatio mRatio;
};
