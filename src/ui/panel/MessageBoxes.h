#pragma once

class QString;
class QWidget;

/// A question with Yes and No. True: Yes.
bool askYesOrNo(QWidget* parent, const QString& title, const QString& question);

/// A warning under the program's name.
void showWarning(QWidget* parent, const QString& text);
