#include "external/MidiOutput.h"

#include "sound/ThreadCheck.h"

MidiOutput::MidiOutput(QObject* parent)
    : QObject(parent)
    , portName(deactivatedName())
{
}

QString MidiOutput::deactivatedName()
{
    return QStringLiteral("- deactivated -");
}

bool MidiOutput::onEngine(const std::function<void()>& work) const
{
    ThreadCheck::gui();
    if (mEngineRunner)
        return mEngineRunner(work);
    work();
    return true;
}
