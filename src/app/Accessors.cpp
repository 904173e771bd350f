#include "app/Accessors.h"

#include "app/StatusNotes.h"

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

void say(const QString& text)
{
    if (theParts.statusNotes)
        theParts.statusNotes->say(text);
}

} // namespace app
