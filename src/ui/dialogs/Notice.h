#pragma once

#include <QMessageBox>

class QWidget;

/// Boxes that tell and ask nothing. They stand beside the work: neither the window nor the closing
/// of the program waits for them.
namespace notice {

/// The box goes with its parent, or when it is closed.
void show(QWidget* parent, QMessageBox::Icon icon, const QString& text);

} // namespace notice
