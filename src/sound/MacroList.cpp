#include "sound/MacroList.h"

#include <cmath>

MacroList MacroList::parse(const QString& text)
{
    MacroList list;
    list.names = text.split(u':');
    for (QString& name : list.names) {
        const qsizetype open = name.indexOf(u'(');
        const qsizetype close = name.indexOf(u')');
        if (open < 0 || close < open) {
            list.defaults.append(NO_DEFAULT);
            continue;
        }
        // QString::toFloat reads the C locale's point whatever the program's locale is.
        const float value = name.mid(open + 1, close - open - 1).toFloat();
        list.defaults.append(std::isfinite(value) ? value : 0.0F);
        name.truncate(open);
    }
    return list;
}
