#include "keyboard/MidiPlaying.h"

#include "app/Accessors.h"
#include "external/MidiInputs.h"
#include "files/SetAside.h"
#include "files/WholeFile.h"
#include "keyboard/KeyPlay.h"
#include "keyboard/KeyTable.h"
#include "keyboard/LayoutFile.h"
#include "keyboard/LayoutTable.h"
#include "sound/PdPlayer.h"

#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <array>
#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds TAKE_INTERVAL{10};
constexpr qint64 MAX_BYTES = qint64{1} << 20U;
constexpr int MACROS = 8;
constexpr int MOST_BATCHES = 16;

const QString INPUTS = QStringLiteral("inputs");
const QString BEND = QStringLiteral("bendSemitones");
const QString MPE = QStringLiteral("mpe");
const QString PRESSURE = QStringLiteral("pressureMacro");
const QString TIMBRE = QStringLiteral("timbreMacro");
const QString SHOW_KEYS = QStringLiteral("showKeys");
const QString CONTROLLERS = QStringLiteral("controllers");

std::uint8_t numberIn(const QJsonObject& json, const QString& name, std::uint8_t otherwise, int highest)
{
    const int number = json.value(name).toInt(-1);
    return number >= 0 && number <= highest ? static_cast<std::uint8_t>(number) : otherwise;
}

void writeUnlessEmpty(const QString& path, const QByteArray& content)
{
    if (content.isEmpty())
        return;
    if (const WholeFile::Outcome outcome = WholeFile::write(path, content); !outcome)
        qCritical().noquote() << QStringLiteral("Couldn't write file %1: %2.").arg(path, outcome.reason);
}

} // namespace

MidiPlaying::MidiPlaying(PdPlayer& player)
    : mPlayer(player)
{
    mTimer.setInterval(TAKE_INTERVAL);
    connect(&mTimer, &QTimer::timeout, this, &MidiPlaying::takeMessages);
}

MidiPlaying::~MidiPlaying()
{
    end();
}

void MidiPlaying::end()
{
    mSlots.clear();
    endKeys();
    mInputs.reset();
}

void MidiPlaying::endKeys()
{
    mTimer.stop();
    // An engine that does not come back may still ask the keys, which then stay with their rings.
    if (mKeys && !mPlayer.setKeySource(nullptr)) {
        (void)mKeys.release();
        (void)mInputs.release();
    }
    mKeys.reset();
}

// ---------------------------------------------------------------- files

QString MidiPlaying::path() const
{
    return mFolder + u'/' + NAME;
}

QString MidiPlaying::layoutsPath() const
{
    return mFolder + u'/' + LayoutFile::NAME;
}

void MidiPlaying::load(const QString& folder)
{
    mFolder = folder;
    mLayouts = LayoutFile::read(layoutsPath()).layouts;
    QFile file(path());
    if (file.exists())
        read(file.open(QIODevice::ReadOnly) ? file.read(MAX_BYTES) : QByteArray());
    if (!mWanted.isEmpty())
        want();
}

void MidiPlaying::read(const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (!document.isObject()) {
        qWarning().noquote() << QStringLiteral("%1 could not be read: %2.").arg(path(), error.errorString());
        SetAside::mark(path());
        return;
    }
    const QJsonObject json = document.object();
    for (const QJsonValue& name : json.value(INPUTS).toArray()) {
        if (!name.toString().isEmpty() && !mWanted.contains(name.toString()))
            mWanted.append(name.toString());
    }
    mSettings.bendSemitones = numberIn(json, BEND, mSettings.bendSemitones, KeySettings::MAX_BEND_SEMITONES);
    mSettings.mpe = json.value(MPE).toBool(mSettings.mpe);
    mSettings.pressureMacro = numberIn(json, PRESSURE, mSettings.pressureMacro, MACROS);
    mSettings.timbreMacro = numberIn(json, TIMBRE, mSettings.timbreMacro, MACROS);
    mShowsKeys = json.value(SHOW_KEYS).toBool();
    mControllers = json.value(CONTROLLERS).toObject();

    // The next saving would lose what could not be used.
    const QJsonObject used = toJson();
    for (const QString& key : used.keys()) {
        if (json.contains(key) && json.value(key) != used.value(key)) {
            qWarning().noquote()
                << QStringLiteral("%1: \"%2\" could not be used as it stands.").arg(path(), key);
            SetAside::mark(path());
        }
    }
}

QJsonObject MidiPlaying::toJson() const
{
    return {{INPUTS, QJsonArray::fromStringList(mWanted)},
            {BEND, mSettings.bendSemitones},
            {MPE, mSettings.mpe},
            {PRESSURE, mSettings.pressureMacro},
            {TIMBRE, mSettings.timbreMacro},
            {SHOW_KEYS, mShowsKeys},
            {CONTROLLERS, mControllers}};
}

QByteArray MidiPlaying::text() const
{
    const bool nothingToKeep =
        mWanted.isEmpty() && mSettings == KeySettings{} && !mShowsKeys && mControllers.isEmpty();
    if (nothingToKeep && !QFile::exists(path()))
        return {};
    return QJsonDocument(toJson()).toJson(QJsonDocument::Indented);
}

QByteArray MidiPlaying::layoutsText() const
{
    return mLayouts.isEmpty() && !QFile::exists(layoutsPath()) ? QByteArray() : LayoutFile::text(mLayouts);
}

void MidiPlaying::save() const
{
    writeUnlessEmpty(path(), text());
    writeUnlessEmpty(layoutsPath(), layoutsText());
}

// ---------------------------------------------------------------- inputs

void MidiPlaying::makeInputs()
{
    if (mInputs)
        return;
    mInputs = std::make_unique<MidiInputs>();
    connect(mInputs.get(), &MidiInputs::changed, this, &MidiPlaying::connectSlots);
    connect(mInputs.get(), &MidiInputs::lost, this, [](const QString& name) {
        app::say(QStringLiteral("The MIDI input %1 has gone. It comes back by itself.").arg(name));
    });
    connect(mInputs.get(), &MidiInputs::back, this,
            [](const QString& name) { app::say(QStringLiteral("The MIDI input %1 is back.").arg(name)); });
    connect(mInputs.get(), &MidiInputs::troubled, this, &app::say);
}

/// The engine asks for keys only while an input is wanted.
void MidiPlaying::want()
{
    makeInputs();
    mInputs->setWanted(mWanted);
    if (!mKeys && !mWanted.isEmpty()) {
        mKeys = std::make_unique<KeyPlay>();
        mKeys->setSettings(mSettings);
        if (!mPlayer.setKeySource(mKeys.get()))
            qWarning() << "The sound takes no keys.";
    }
    connectSlots();
    if (mWanted.isEmpty())
        endKeys();
}

QStringList MidiPlaying::available()
{
    makeInputs();
    return mInputs->available();
}

bool MidiPlaying::isOpen(const QString& name) const
{
    return mInputs && mInputs->open().contains(name);
}

void MidiPlaying::setWanted(const QStringList& names)
{
    if (names == mWanted)
        return;
    mWanted = names;
    if (!mWanted.isEmpty() && mLayouts.isEmpty())
        mLayouts.append({.name = Layout::kindText(Layout::Kind::Twelve), .kind = Layout::Kind::Twelve});
    want();
    emit layoutsChanged();
}

/// An input that is lost keeps its slot and ring as long as it is wanted.
void MidiPlaying::connectSlots()
{
    if (!mKeys) {
        emit inputsChanged();
        return;
    }
    QHash<QString, int> slotsNow;
    for (const QString& name : mWanted) {
        if (const int slot = mInputs->slotOf(name); slot >= 0)
            slotsNow.insert(name, slot);
    }
    const QHash<QString, int> former = std::exchange(mSlots, slotsNow);
    for (const int slot : former) {
        if (!slotsNow.values().contains(slot)) {
            mKeys->setRing(slot, nullptr);
            mKeys->setTable(slot, nullptr);
        }
    }
    if (former != mSlots)
        giveTables();
    for (const int slot : std::as_const(mSlots)) {
        if (!former.values().contains(slot))
            mKeys->setRing(slot, &mInputs->ring(slot));
    }
    if (mInputs->open().isEmpty())
        mTimer.stop();
    else if (!mTimer.isActive())
        mTimer.start();
    emit inputsChanged();
}

void MidiPlaying::takeMessages()
{
    std::array<MidiInMessage, 256> messages{};
    // A flood leaves the window its turns; a receiver may end the keys.
    for (int batch = 0; batch < MOST_BATCHES && mKeys; ++batch) {
        const std::size_t count = mKeys->takeMessages(messages);
        for (std::size_t i = 0; i < count; ++i)
            emit messageArrived(messages[i]);
        if (count < messages.size())
            return;
    }
}

// ---------------------------------------------------------------- what keys play

void MidiPlaying::giveTables()
{
    for (auto slot = mSlots.cbegin(); slot != mSlots.cend(); ++slot)
        mKeys->setTable(slot.value(), mTeaching ? nullptr : LayoutTable::make(mLayouts, slot.key()));
}

QList<std::shared_ptr<const KeyTable>> MidiPlaying::tables() const
{
    QList<std::shared_ptr<const KeyTable>> made;
    for (const QString& name : mWanted)
        made.append(LayoutTable::make(mLayouts, name));
    if (made.isEmpty())
        made.append(LayoutTable::make(mLayouts, QString()));
    return made;
}

void MidiPlaying::applyLayouts(const QList<Layout>& layouts)
{
    mLayouts = layouts;
    giveTables();
    emit layoutsChanged();
}

void MidiPlaying::setLayouts(const QList<Layout>& layouts)
{
    if (layouts == mLayouts)
        return;
    mFormerLayouts.append(mLayouts);
    if (mFormerLayouts.size() > UNDO_STEPS)
        mFormerLayouts.removeFirst();
    applyLayouts(layouts);
}

void MidiPlaying::undo()
{
    if (canUndo())
        applyLayouts(mFormerLayouts.takeLast());
}

void MidiPlaying::setTeaching(bool on)
{
    mTeaching = on;
    giveTables();
}

void MidiPlaying::setSettings(const KeySettings& settings)
{
    mSettings = settings;
    if (mKeys)
        mKeys->setSettings(mSettings);
}

void MidiPlaying::setShowsKeys(bool on)
{
    if (on == mShowsKeys)
        return;
    mShowsKeys = on;
    emit showsKeysChanged(on);
}
