#pragma once

#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

/// Stops the note of an absolute ratio and takes its node out of the stack.
class OrloNodeRemoveEvent : public OrloEvent
{
public:
    /// [any]
    explicit OrloNodeRemoveEvent(const OrloRatio& ratio)
        : OrloEvent(NodeRemove, 1.0F)
        , mRatio(ratio)
    {
    }

    /// [any]
    const OrloRatio& ratio() const { return mRatio; }

private:
    OrloRatio mRatio;
};
