#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <source_location>

/// Lines for the log from the audio thread, which must not build texts or write files: a constant
/// text with place holders and its arguments go through a lock-free ring, and the graphical thread
/// builds the line and logs it.
///
/// There is one ring for the process, with one writer, the holder of the engine. Capacity: some 500
/// lines; a line that finds the ring full is dropped, and the number of these is logged. Writing never
/// blocks and allocates nothing.
namespace AudioLog {

/// One argument. Texts are copied, up to MAX_TEXT bytes.
class Argument
{
public:
    static constexpr std::size_t MAX_TEXT = 1000;
    enum class Kind : std::uint8_t { Integer, Unsigned, Real, Text };

    /// [any]
    Argument(int value);
    /// [any]
    Argument(unsigned long long value);
    /// [any]
    Argument(double value);
    /// [any] UTF-8. The text must live until the line is written.
    Argument(const char* text);

    /// [any]
    Kind kind() const { return mKind; }
    /// [any] The bytes that go through the ring.
    const void* data() const;
    /// [any] How many these are.
    std::size_t size() const;

private:
    Kind mKind;
    union {
        long long mInteger;
        unsigned long long mUnsigned;
        double mReal;
        const char* mText;
    };
};

/// [audio] Effect: the line is logged soon. `text` is ASCII and must live as long as the program; its %1
/// to %9 stand for the arguments. The log filter goes by the place.
void warning(const char* text, std::initializer_list<Argument> arguments = {},
             std::source_location place = std::source_location::current());
/// [audio] The same for what a flood of commands can bring about: of very many such lines the log gets the
/// number (RationedLog).
void rationed(const char* text, std::initializer_list<Argument> arguments = {},
              std::source_location place = std::source_location::current());
/// [audio] The same as warning().
void critical(const char* text, std::initializer_list<Argument> arguments = {},
              std::source_location place = std::source_location::current());

/// [gui] Nothing has been left out of the rationed lines so far.
void renewRations();
/// [any] Whether there is something to log.
bool isPending();
/// [gui] Logs what has come.
void drain();

} // namespace AudioLog
