#include "ui/dialogs/FrequencySpinBox.h"

#include <QLineEdit>
#include <QSignalBlocker>

void FrequencySpinBox::setShownDecimals(int decimals)
{
    if (decimals == this->decimals())
        return;
    QLineEdit* edit = lineEdit();
    QString typed = edit->text();
    const int cursor = edit->cursorPosition();
    const bool typing = edit->isModified() && edit->hasFocus();
    setDecimals(decimals);
    int position = cursor;
    // A number with more decimals than it may have now is written anew.
    if (!typing || validate(typed, position) != QValidator::Acceptable)
        return;
    const QSignalBlocker blocker(edit);
    edit->setText(typed);
    edit->setCursorPosition(cursor);
    edit->setModified(true);
}
