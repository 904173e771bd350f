#pragma once

#include <QMessageBox>

class QWidget;

/// Shows a message with an Ok button that neither the window nor the end of the program waits for.
/// The box is deleted with its parent, or when it is closed.
void showNonModalBox(QWidget* parent, QMessageBox::Icon icon, const QString& text);
