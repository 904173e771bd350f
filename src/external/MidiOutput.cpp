#include "external/MidiOutput.h"

namespace {
constexpr int MOST_KEYS = 256; // that a byte can tell apart
} // namespace

MidiOutput::MidiOutput(QObject* parent)
    : QObject(parent)
    , portName(deactivatedName())
{
    tunedKeys.reserve(MOST_KEYS);
    channelKey.fill(69);
    channelExactNote.fill(69.0);
}

QString MidiOutput::deactivatedName()
{
    return QStringLiteral("- deactivated -");
}

/// [gui]
bool MidiOutput::onEngine(const std::function<void()>& work) const
{
    if (mEngineRunner)
        return mEngineRunner(work);
    work();
    return true;
}
