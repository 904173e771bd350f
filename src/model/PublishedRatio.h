#pragma once

#include "model/Published.h"

/// A ratio that one thread publishes and any thread reads, as Published tells.
class PublishedRatio
{
public:
    struct Value
    {
        unsigned long long numerator = 1;
        unsigned long long denominator = 1;
    };

    /// [gui] One writer only. Effect: this is what read() gives from now on. Never blocks.
    void publish(Value value) { mPublished.publish(value); }
    /// [any] 1/1 before the first publication. Never blocks.
    Value read() const
    {
        Value value;
        mPublished.read(value);
        return value;
    }

private:
    Published<Value, 64> mPublished{Value{}};
};
