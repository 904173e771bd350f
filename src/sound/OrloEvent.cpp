#include "sound/OrloEvent.h"

OrloEvent::OrloEvent(Type type, float value)
    : mType(type)
    , mValue(value)
{
}

OrloEvent::~OrloEvent() = default;
