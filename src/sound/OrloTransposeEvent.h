#pragma once

#include "model/OrloRatio.h"
#include "sound/OrloEvent.h"

/// Transposes the lattice by a ratio.
class OrloTransposeEvent : public OrloEvent
{
public:
    explicit OrloTransposeEvent(const OrloRatio& ratio)
        : OrloEvent(TransposeByRatio, 1.0F)
        , mRatio(ratio)
    {
    }

    const OrloRatio& ratio() const { return mRatio; }

private:
    OrloRatio mRatio;
};
