#include "ui/panel/MenuButton.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

MenuButton::MenuButton(QWidget* parent)
    : QPushButton(parent)
    , mMenu(new QMenu(this))
    , mLine(mMenu->addSeparator())
{
    mMenu->setObjectName(QStringLiteral("menu"));
    connect(this, &QPushButton::clicked, this, &MenuButton::open);
}

QAction* MenuButton::add(const QString& text, const QKeySequence& key, const std::function<void()>& action,
                         Part part)
{
    auto* entry = new QAction(text, mMenu);
    mMenu->insertAction(part == Features ? mLine : nullptr, entry);
    entry->setShortcut(key);
    entry->setShortcutContext(Qt::ApplicationShortcut);
    entry->setShortcutVisibleInContextMenu(true);
    entry->setAutoRepeat(false);
    connect(entry, &QAction::triggered, this, [action] { action(); });
    window()->addAction(entry); // the button is hidden with its panel, and a hidden widget's keys are dead
    return entry;
}

/// Not by setMenu(), which waits in an event loop of its own while the menu is open.
void MenuButton::open()
{
    const QPoint corner = mapToGlobal(rect().bottomRight());
    mMenu->popup(corner - QPoint(mMenu->sizeHint().width() - 1, -2));
}
