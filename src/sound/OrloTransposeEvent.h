#pragma once

#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

/// Transposes the lattice by a ratio.
class OrloTransposeEvent : public OrloEvent
{
public:
    /// [any]
    explicit OrloTransposeEvent(const OrloRatio& ratio)
        : OrloEvent(TransposeByRatio, 1.0F)
        , mRatio(ratio)
    {
    }

    /// [any]
    const OrloRatio& ratio() const { return mRatio; }

private:
    OrloRatio mRatio;
};
