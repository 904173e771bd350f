#pragma once

#include <functional>
#include <vector>

/// A Pure Data object beside the patch's own receivers of a symbol: hears, while it lives, the
/// numbers of each list that is sent there. libpd must have been started.
class PdReceiver
{
public:
    using Hear = std::function<void(const std::vector<float>&)>;

    PdReceiver(const char* symbol, Hear hear);
    ~PdReceiver();
    PdReceiver(const PdReceiver&) = delete;
    PdReceiver& operator=(const PdReceiver&) = delete;

private:
    struct Object;

    Object* mObject;
    const char* const mSymbol;
    const Hear mHear;
};
