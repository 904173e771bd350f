#pragma once

#include <QPushButton>

#include <functional>

class QKeySequence;
class QMenu;

/// Opens the menu of what has no control of its own in the panel. Whoever has something to offer adds it.
class MenuButton : public QPushButton
{
    Q_OBJECT

public:
    explicit MenuButton(QWidget* parent = nullptr);

    enum Part {
        Features, // in the order of adding
        Window,   // below a line
    };

    /// The key works in every window of the program, whatever has the focus and while the
    /// panel is hidden; none of KeyMap's keys may be given. Empty: no key.
    QAction* add(const QString& text, const QKeySequence& key, const std::function<void()>& action,
                 Part part = Features);

private:
    void open();

    QMenu* mMenu;
    QAction* mLine;
};
