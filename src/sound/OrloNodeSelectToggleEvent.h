#pragma once

#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

/// Selects or deselects a node by its relative ratio.
class OrloNodeSelectToggleEvent : public OrloEvent
{
public:
    /// [any]
    explicit OrloNodeSelectToggleEvent(const OrloRatio& ratio)
        : OrloEvent(NodeSelectToggle, 1.0F)
        , mRatio(ratio)
    {
    }

    /// [any]
    const OrloRatio& ratio() const { return mRatio; }

private:
    OrloRatio mRatio;
};
