#include "support/EngineLog.h"

#include "sound/PdPlayer.h"

#include <QMutexLocker>

#include <m_pd.h>

namespace {

constexpr const char* SYMBOLS[] = {"orlo-in", "master-vol"};

template <class T>
QString text(const T& value)
{
    if constexpr (std::is_same_v<T, OrloRatio>)
        return QStringLiteral("%1/%2").arg(value.numerator()).arg(value.denominator());
    else if constexpr (std::is_same_v<T, bool>)
        return value ? QStringLiteral("on") : QStringLiteral("off");
    else if constexpr (std::is_same_v<T, QString>)
        return value;
    else if constexpr (std::is_same_v<T, QStringList>)
        return value.join(u'|');
    else if constexpr (std::is_same_v<T, float>)
        return QString::number(static_cast<double>(value), 'g', 7);
    else
        return QString::number(value);
}

template <class T>
    requires(!std::is_same_v<T, QString>)
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
    // Direct connections, so that the lines stand in the order of the engine's doings.
    const auto hear = [this, &player]<class... Values>(void (PdPlayer::*signal)(Values...), const char* name) {
        const auto write = [this, name](const Values&... values) {
            add(QStringList{QLatin1StringView(name), text(values)...}.join(u' '));
        };
        connect(&player, signal, this, write, Qt::DirectConnection);
    };
    hear(&PdPlayer::noteToggled, "noteToggled");
    hear(&PdPlayer::nodeHold, "nodeHold");
    hear(&PdPlayer::removeNodeInStack, "removeNodeInStack");
    hear(&PdPlayer::nodesRecalled, "nodesRecalled");
    hear(&PdPlayer::transposed, "transposed");
    hear(&PdPlayer::volumeChanged, "volumeChanged");
    hear(&PdPlayer::voiceVolumeChanged, "voiceVolumeChanged");
    hear(&PdPlayer::baseFrequencyChanged, "baseFrequencyChanged");
    hear(&PdPlayer::monophonicChanged, "monophonicChanged");
    hear(&PdPlayer::primeEnabledToggled, "primeEnabledToggled");
    hear(&PdPlayer::macroNamesReceived, "macroNamesReceived");
    hear(&PdPlayer::macroDefaultsReceived, "macroDefaultsReceived");
    hear(qOverload<int, float>(&PdPlayer::macroValueChanged), "macroValueChanged");
    hear(&PdPlayer::instructionsToInterface, "instruction");
    hear(&PdPlayer::patchLoaded, "patchLoaded");
    hear(&PdPlayer::patchDecRequested, "patchDecRequested");
    hear(&PdPlayer::patchIncRequested, "patchIncRequested");
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
