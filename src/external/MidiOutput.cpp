#include "external/MidiOutput.h"

#include "external/MpeBend.h"
#include "external/MtsTuning.h"
#include "sound/ThreadCheck.h"

#include <algorithm>

MidiOutput::MidiOutput(QObject* parent)
    : QObject(parent)
    , portName(deactivatedName())
{
}

QString MidiOutput::deactivatedName()
{
    return QStringLiteral("- deactivated -");
}

int MidiOutput::bendRangeCents() const
{
    return mpeZone ? mpe::zoneRange(pitchBendRangeCents) : pitchBendRangeCents.load();
}

double MidiOutput::pitchErrorCents() const
{
    if (!mpeMode)
        return mts::STEP_CENTS;
    return std::max(mpe::stepCents(bendRangeCents()), mpeChannels.largestMiss.load());
}

bool MidiOutput::onEngine(const std::function<void()>& work) const
{
    ThreadCheck::gui();
    if (mEngineRunner)
        return mEngineRunner(work);
    work();
    return true;
}
