#include "ui/dialogs/HelpSection.h"

#include <QKeySequence>

void HelpSection::add(const QString& press, const QString& effect)
{
    for (Row& row : rows) {
        if (row.effect == effect) {
            row.presses.append(press);
            return;
        }
    }
    rows.append({{press}, effect});
}

void HelpSection::add(QKeyCombination key, const QString& effect)
{
    add(QKeySequence(key).toString(QKeySequence::NativeText), effect);
}
