#include "sound/AudioLog.h"

#include "app/LogText.h"
#include "app/RationedLog.h"
#include "sound/ByteRing.h"
#include "sound/ThreadCheck.h"

#include <QDebug>
#include <QStringList>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <map>

namespace AudioLog {

namespace {

constexpr std::size_t RING_BYTES = 65536;

struct Head
{
    const char* text;
    const char* file;
    std::uint32_t line;
    QtMsgType type;
    bool isRationed;
    std::uint32_t bytes; // of the arguments
};

struct ArgumentHead
{
    Argument::Kind kind;
    std::uint16_t size;
};

ByteRing& ring()
{
    static ByteRing theRing;
    static const bool made = theRing.init(RING_BYTES);
    (void)made;
    return theRing;
}
// Made before any thread runs, so that no first line of the audio thread has to.
[[maybe_unused]] const ByteRing& earlyRing = ring();

std::atomic<unsigned> dropped{0};

void write(QtMsgType type, const char* text, std::initializer_list<Argument> arguments,
           const std::source_location& place, bool isRationed = false)
{
    ThreadCheck::audio();
    std::array<std::byte, 2048> packed;
    std::size_t used = 0;
    for (const Argument& argument : arguments) {
        const ArgumentHead head{argument.kind(), static_cast<std::uint16_t>(argument.size())};
        if (used + sizeof(head) + head.size > packed.size())
            break;
        std::memcpy(packed.data() + used, &head, sizeof(head));
        std::memcpy(packed.data() + used + sizeof(head), argument.data(), head.size);
        used += sizeof(head) + head.size;
    }
    const Head head{text, place.file_name(), place.line(),
                    type, isRationed,        static_cast<std::uint32_t>(used)};
    if (!ring().write({std::as_bytes(std::span(&head, 1)), std::span(packed.data(), used)}))
        dropped.fetch_add(1, std::memory_order_relaxed);
}

template <class T>
T valueAt(const std::byte* from)
{
    T value;
    std::memcpy(&value, from, sizeof(value));
    return value;
}

QString textOf(const ArgumentHead& head, const std::byte* from)
{
    switch (head.kind) {
    case Argument::Kind::Integer: return QString::number(valueAt<long long>(from));
    case Argument::Kind::Unsigned: return QString::number(valueAt<unsigned long long>(from));
    case Argument::Kind::Real: return QString::number(valueAt<double>(from));
    case Argument::Kind::Text:
        return logText(QString::fromUtf8(reinterpret_cast<const char*>(from), head.size));
    }
    return QString();
}

/// [gui] One for each constant text.
std::map<const char*, RationedLog>& rations()
{
    static std::map<const char*, RationedLog> byText;
    return byText;
}

void log(const Head& head, const std::byte* arguments)
{
    QStringList texts;
    for (std::size_t at = 0; at < head.bytes;) {
        const auto argument = valueAt<ArgumentHead>(arguments + at);
        texts.append(textOf(argument, arguments + at + sizeof(argument)));
        at += sizeof(argument) + argument.size;
    }
    // In one pass: an argument may contain what looks like a place holder.
    QString line;
    for (const char* at = head.text; *at != 0; ++at) {
        const qsizetype number = at[0] == '%' ? at[1] - '1' : -1;
        if (number >= 0 && number < texts.size()) {
            line += texts[number];
            ++at;
        } else {
            line += QLatin1Char(*at);
        }
    }
    if (head.isRationed) {
        const auto ration = rations().try_emplace(head.text, QStringLiteral("more lines like: ")
                                                                 + QLatin1StringView(head.text));
        ration.first->second.write(line, {head.file, static_cast<int>(head.line)});
        return;
    }
    const QMessageLogger logger(head.file, static_cast<int>(head.line), nullptr);
    (head.type == QtCriticalMsg ? logger.critical() : logger.warning()).noquote() << line;
}

} // namespace

Argument::Argument(int value)
    : mKind(Kind::Integer)
    , mInteger(value)
{
}

Argument::Argument(unsigned long long value)
    : mKind(Kind::Unsigned)
    , mUnsigned(value)
{
}

Argument::Argument(double value)
    : mKind(Kind::Real)
    , mReal(value)
{
}

Argument::Argument(const char* text)
    : mKind(Kind::Text)
    , mText(text)
{
}

const void* Argument::data() const
{
    switch (mKind) {
    case Kind::Integer: return &mInteger;
    case Kind::Unsigned: return &mUnsigned;
    case Kind::Real: return &mReal;
    case Kind::Text: return mText;
    }
    return nullptr;
}

std::size_t Argument::size() const
{
    return mKind == Kind::Text ? std::min(std::strlen(mText), MAX_TEXT) : sizeof(long long);
}

void warning(const char* text, std::initializer_list<Argument> arguments, std::source_location place)
{
    write(QtWarningMsg, text, arguments, place);
}

void rationed(const char* text, std::initializer_list<Argument> arguments, std::source_location place)
{
    write(QtWarningMsg, text, arguments, place, true);
}

void critical(const char* text, std::initializer_list<Argument> arguments, std::source_location place)
{
    write(QtCriticalMsg, text, arguments, place);
}

void renewRations()
{
    ThreadCheck::gui();
    rations().clear();
}

bool isPending()
{
    return ring().readable() > 0 || dropped.load(std::memory_order_relaxed) > 0;
}

void drain()
{
    ThreadCheck::gui();
    std::array<std::byte, 2048> arguments;
    Head head;
    while (ring().read(&head, sizeof(head))) {
        ring().read(arguments.data(), head.bytes);
        log(head, arguments.data());
    }
    for (auto& [text, ration] : rations())
        ration.tellLeftOut();
    static RationedLog lost(QStringLiteral("lines of the audio thread found no room and were dropped."));
    lost.leaveOut(dropped.exchange(0, std::memory_order_relaxed));
    lost.tellLeftOut();
}

} // namespace AudioLog
