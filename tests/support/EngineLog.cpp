#include "support/EngineLog.h"

#include "sound/PdPlayer.h"

#include <QMutexLocker>

#include <m_pd.h>

#include <iterator>

namespace {

constexpr const char* SYMBOLS[] = {"orlo-in", "master-vol"};

QString text(float value)
{
    return QString::number(static_cast<double>(value), 'g', 7);
}

QString text(const OrloRatio& ratio)
{
    return QStringLiteral("%1/%2").arg(ratio.numerator()).arg(ratio.denominator());
}

QString text(bool on)
{
    return on ? QStringLiteral("on") : QStringLiteral("off");
}

QString text(int value)
{
    return QString::number(value);
}

template <class T>
QString text(const QList<T>& values)
{
    QStringList texts;
    for (const T value : values)
        texts.append(text(value));
    return u'[' + texts.join(u' ') + u']';
}

} // namespace

/// A Pure Data object beside the patch's own receivers of the same symbol.
struct EngineLog::Receiver
{
    t_pd object;
    EngineLog* log;
    const char* symbol;
};

EngineLog::EngineLog(PdPlayer& player)
{
    static t_class* receiverClass = [] {
        t_class* made = class_new(gensym("engine_log"), nullptr, nullptr, sizeof(Receiver), CLASS_PD, A_NULL);
        class_addlist(made, reinterpret_cast<t_method>(&EngineLog::onList));
        return made;
    }();
    for (size_t i = 0; i < std::size(SYMBOLS); ++i) {
        mReceivers[i] = reinterpret_cast<Receiver*>(pd_new(receiverClass));
        mReceivers[i]->log = this;
        mReceivers[i]->symbol = SYMBOLS[i];
        pd_bind(&mReceivers[i]->object, gensym(SYMBOLS[i]));
    }
    connectSignals(player);
    connectListSignals(player);
}

EngineLog::~EngineLog()
{
    for (Receiver* receiver : mReceivers) {
        pd_unbind(&receiver->object, gensym(receiver->symbol));
        pd_free(&receiver->object);
    }
}

void EngineLog::onList(Receiver* receiver, void*, int count, _atom* atoms)
{
    QString line = QString::fromLatin1(receiver->symbol);
    for (int i = 0; i < count; ++i)
        line += u' ' + text(atom_getfloat(atoms + i));
    receiver->log->add(line);
}

// Direct connections, so that the lines stand in the order of the engine's doings.
void EngineLog::connectSignals(PdPlayer& player)
{
    const auto toggled = [&player, this](auto signal, const char* name) {
        connect(
            &player, signal, this,
            [this, name](const OrloRatio& ratio, bool on) {
                add(QStringLiteral("%1 %2 %3").arg(QLatin1StringView(name), text(ratio), text(on)));
            },
            Qt::DirectConnection);
    };
    toggled(&PdPlayer::noteToggled, "noteToggled");
    toggled(&PdPlayer::nodeHold, "nodeHold");

    const auto oneValue = [&player, this](auto signal, const char* name) {
        connect(
            &player, signal, this,
            [this, name](auto value) {
                add(QStringLiteral("%1 %2").arg(QLatin1StringView(name), text(value)));
            },
            Qt::DirectConnection);
    };
    oneValue(&PdPlayer::volumeChanged, "volumeChanged");
    oneValue(&PdPlayer::voiceVolumeChanged, "voiceVolumeChanged");
    oneValue(&PdPlayer::baseFrequencyChanged, "baseFrequencyChanged");
    oneValue(&PdPlayer::monophonicChanged, "monophonicChanged");
    oneValue(&PdPlayer::removeNodeInStack, "removeNodeInStack");
    oneValue(&PdPlayer::macroDefaultsReceived, "macroDefaultsReceived");

    const auto bare = [&player, this](auto signal, const char* name) {
        connect(
            &player, signal, this, [this, name] { add(QString::fromLatin1(name)); }, Qt::DirectConnection);
    };
    bare(&PdPlayer::nodesRecalled, "nodesRecalled");
    bare(&PdPlayer::patchDecRequested, "patchDecRequested");
    bare(&PdPlayer::patchIncRequested, "patchIncRequested");
}

void EngineLog::connectListSignals(PdPlayer& player)
{
    connect(
        &player, &PdPlayer::transposed, this,
        [this](const OrloRatio& transposition, int step) {
            add(QStringLiteral("transposed %1 %2").arg(text(transposition)).arg(step));
        },
        Qt::DirectConnection);
    connect(
        &player, &PdPlayer::primeEnabledToggled, this,
        [this](int prime, bool on) {
            add(QStringLiteral("primeEnabledToggled %1 %2").arg(prime).arg(text(on)));
        },
        Qt::DirectConnection);
    connect(
        &player, qOverload<int, float>(&PdPlayer::macroValueChanged), this,
        [this](int macro, float value) {
            add(QStringLiteral("macroValueChanged %1 %2").arg(macro).arg(text(value)));
        },
        Qt::DirectConnection);
    connect(
        &player, &PdPlayer::macroNamesReceived, this,
        [this](const QStringList& names) { add(QStringLiteral("macroNamesReceived ") + names.join(u'|')); },
        Qt::DirectConnection);
    connect(
        &player, &PdPlayer::instructionsToInterface, this,
        [this](int instruction, const QList<int>& voices, const QList<float>& values1,
               const QList<float>& values2) {
            add(QStringLiteral("instruction %1 %2 %3 %4")
                    .arg(instruction)
                    .arg(text(voices), text(values1), text(values2)));
        },
        Qt::DirectConnection);
    connect(
        &player, &PdPlayer::patchLoaded, this,
        [this](const QString& path) { add(QStringLiteral("patchLoaded ") + path); }, Qt::DirectConnection);
}

void EngineLog::add(const QString& line)
{
    const QMutexLocker locker(&mMutex);
    mLines.append(line);
}

QStringList EngineLog::take()
{
    const QMutexLocker locker(&mMutex);
    return std::exchange(mLines, {});
}

QStringList EngineLog::take(const QString& beginning)
{
    QStringList lines = take();
    lines.removeIf([&](const QString& line) { return !line.startsWith(beginning); });
    return lines;
}
