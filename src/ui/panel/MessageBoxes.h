#pragma once

class QString;
class QWidget;

/// A question with Yes and No. True: Yes.
bool askYesOrNo(QWidget* parent, const QString& title, const QString& question);

/// The same before something is lost for good: Return and Escape mean No.
bool askBeforeLoss(QWidget* parent, const QString& title, const QString& question);

/// Something to know, under the program's name.
void showNotice(QWidget* parent, const QString& text);

/// A warning under the program's name.
void showWarning(QWidget* parent, const QString& text);
