#pragma once

class QMainWindow;

namespace Ui {
class MainWindow;
}

/// What the form itself cannot say: icons, the alignment of single controls, and which controls are hidden
/// for good.
void setUpForm(const Ui::MainWindow& form, QMainWindow* window);
