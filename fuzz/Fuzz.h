#pragma once

#include "support/TestHome.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstddef>
#include <cstdint>

/// What the fuzz targets share. A target reads one input in the way the program reads a file, a packet
/// or an answer from the network, and aborts where a property does not hold. The fuzzer calls it with
/// inputs of its own making; the ordinary build replays the folders of tests/data/fuzz.
namespace fuzz {

using Target = void (*)(const QByteArray& input);

/// Makes the application object at the first call, and runs the target without a log. What it logs must
/// stay in proportion to the input.
void run(Target target, const std::uint8_t* data, std::size_t size);

/// Enters a target in the replay's table.
bool enter(const char* name, Target target);

/// A data folder without what the former input left in it.
const TestHome& cleanHome();

[[noreturn]] void fail(const char* property, const char* file, int line);

/// As it comes back from a file.
inline QJsonObject throughText(const QJsonObject& json)
{
    return QJsonDocument::fromJson(QJsonDocument(json).toJson()).object();
}

/// What it writes, as it comes back from a file.
template <class Root>
QJsonObject written(const Root& root)
{
    QJsonObject json;
    root.write(json);
    return throughText(json);
}

} // namespace fuzz

/// In release builds too.
#define FUZZ_REQUIRE(property)                                                                               \
    do {                                                                                                     \
        if (!(property))                                                                                     \
            fuzz::fail(#property, __FILE__, __LINE__);                                                       \
    } while (false)

/// The head of a target, named as its folder of inputs.
#ifdef ORLO_LIBFUZZER
#define FUZZ_TARGET(name)                                                                                    \
    static void name(const QByteArray& input);                                                               \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)                        \
    {                                                                                                        \
        fuzz::run(&name, data, size);                                                                        \
        return 0;                                                                                            \
    }                                                                                                        \
    static void name(const QByteArray& input)
#else
#define FUZZ_TARGET(name)                                                                                    \
    static void name(const QByteArray& input);                                                               \
    static const bool name##IsEntered = fuzz::enter(#name, &name);                                           \
    static void name(const QByteArray& input)
#endif
