#include "app/Accessors.h"

namespace app {

namespace {
Parts theParts;
}

void setParts(const Parts& parts)
{
    theParts = parts;
}

const Parts& parts()
{
    return theParts;
}

} // namespace app
