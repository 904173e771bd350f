#pragma once

#include "sound/OrloEvent.h"
#include "ui/dialogs/HelpSection.h"

#include <QHash>
#include <QList>

#include <functional>

class PdPlayer;
class QPushButton;
struct PanelParts;

namespace Ui {
class MainWindow;
}

/// What each key of the window does, by what is held with it, and how the help says it.
class KeyMap
{
public:
    using Action = std::function<void()>;

    /// What the keys act on is not owned. `toggleOptions` opens or closes the options dialog.
    KeyMap(const Ui::MainWindow& form, PanelParts* panel, PdPlayer* player, const Action& toggleOptions);

    /// False when the key has no action with these modifiers.
    bool press(int key, Qt::KeyboardModifiers held) const;
    bool release(int key) const;

    /// All keys, by subject.
    QList<HelpSection> help() const;

private:
    enum Rule {
        Any,     // modifiers do not matter
        Exactly, // these and no others
        With,    // these, others may be held too
    };
    struct Row
    {
        Rule rule;
        Qt::KeyboardModifiers modifiers;
        Action action;

        bool matches(Qt::KeyboardModifiers held) const;
    };

    enum Group { Sound, Chords, View, Transposing, Nodes, Program };
    struct Help
    {
        Group group;
        const char* text; // keys of one group with the same text stand in one line of the help
    };

    /// The rows of one key are tried in the order of their adding.
    void add(int key, Rule rule, Qt::KeyboardModifiers modifiers, Help help, const Action& action);
    void addDigits();
    void addLettersToL();
    void addLettersFromM();
    void addOtherKeys();

    /// The button flashes, and its slot runs at the flash's end.
    static Action click(QPushButton* button);
    Action queue(OrloEvent::Type type) const;
    /// The same for what acts on the selection; without one it is said.
    Action queueForSelected(OrloEvent::Type type) const;
    void selectAllSounding() const;
    /// The event is the panel's.
    Action queue(const OrloEvent& event) const;

    const Ui::MainWindow& mForm;
    PanelParts* mPanel;
    PdPlayer* mPlayer;
    const Action mToggleOptions;
    QHash<int, QList<Row>> mRows;
    QList<std::pair<QKeyCombination, Help>> mHelp; // in the order of the table
};
