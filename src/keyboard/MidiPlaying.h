#pragma once

#include "external/MidiInMessage.h"
#include "keyboard/KeySettings.h"
#include "keyboard/Layout.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>

class KeyPlay;
class MidiInputs;
class PdPlayer;
struct KeyTable;

/// Everything by which MIDI keys play: the inputs that are wanted, the layouts and the settings, with their
/// two files in the data folder. Nothing is made, and no file written, before the first input is wanted or
/// something else is changed. [gui]
class MidiPlaying : public QObject
{
    Q_OBJECT

public:
    /// In the data folder, beside LayoutFile::NAME.
    inline static const QString NAME = QStringLiteral("midi_input.json");
    static constexpr int UNDO_STEPS = 100;

    /// The player must outlive end().
    explicit MidiPlaying(PdPlayer& player);
    ~MidiPlaying() override;

    /// Reads both files and opens what is wanted. Once, when the engine runs.
    void load(const QString& folder);
    /// Writes both files, unless nothing was ever changed.
    void save() const;
    /// Before the engine ends: every key is let go, and the inputs are closed.
    void end();

    /// What the files hold now; empty as long as there is nothing to keep.
    QByteArray text() const;
    QByteArray layoutsText() const;
    QString path() const;
    QString layoutsPath() const;

    /// Whether wanted or not. Begins to look for inputs.
    QStringList available();
    const QStringList& wanted() const { return mWanted; }
    void setWanted(const QStringList& names);
    bool isOpen(const QString& name) const;
    /// Of messageArrived(); empty when the input is no longer wanted.
    QString inputName(int slot) const { return mSlots.key(slot); }

    const QList<Layout>& layouts() const { return mLayouts; }
    /// Can be undone.
    void setLayouts(const QList<Layout>& layouts);
    bool canUndo() const { return !mFormerLayouts.isEmpty(); }
    void undo();
    /// What the keys of the wanted inputs play; without one, what any input would.
    QList<std::shared_ptr<const KeyTable>> tables() const;

    const KeySettings& settings() const { return mSettings; }
    void setSettings(const KeySettings& settings);

    bool showsKeys() const { return mShowsKeys; }
    void setShowsKeys(bool on);

    /// While keys are taught they sound nothing.
    void setTeaching(bool on);
    bool isTeaching() const { return mTeaching; }

    /// What the map of controllers keeps here.
    const QJsonObject& controllers() const { return mControllers; }
    void setControllers(const QJsonObject& controllers) { mControllers = controllers; }

signals:
    /// Some milliseconds after it played. MidiInMessage::input is the slot.
    void messageArrived(MidiInMessage message);
    void inputsChanged();
    void layoutsChanged();
    void showsKeysChanged(bool on);

private:
    void read(const QByteArray& text);
    QJsonObject toJson() const;
    void makeInputs();
    void want();
    void endKeys();
    void connectSlots();
    void giveTables();
    void takeMessages();
    void applyLayouts(const QList<Layout>& layouts);

    PdPlayer& mPlayer;
    QString mFolder;
    QStringList mWanted;
    KeySettings mSettings;
    bool mShowsKeys = false;
    QJsonObject mControllers;
    QList<Layout> mLayouts;
    QList<QList<Layout>> mFormerLayouts; // the latest last
    bool mTeaching = false;
    QTimer mTimer; // runs while an input is open

    std::unique_ptr<MidiInputs> mInputs; // before the keys, which read its rings
    std::unique_ptr<KeyPlay> mKeys;
    QHash<QString, int> mSlots; // of wanted inputs, by name
};
