#pragma once

class QMainWindow;

namespace Ui {
class MainWindow;
}

/// Makes the icons known to Qt, which does not find resources of a static library by itself. Before the form
/// is made, since it names some.
void initIcons();

/// What the form itself cannot say: icons, the alignment of single controls, which controls are hidden for
/// good, and which frames scroll where the room ends.
void setUpForm(const Ui::MainWindow& form, QMainWindow* window);
