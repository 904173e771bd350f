// The lower MPE zone: channel 0 manages it, all others are its members and carry one voice each.

#include "external/MidiOutRtMidi.h"

#include "app/LogFilter.h"
#include "external/MpeBend.h"
#include "sound/AudioLog.h"
#include "sound/ThreadCheck.h"

namespace {

constexpr int DEFAULT_RANGE_CENTS = 200; // of the manager all the time, of the members after the zone

} // namespace

void MidiOutRtMidi::setMpeZone()
{
    ThreadCheck::gui();
    if (mpeZone || onEngine([this] { enterZone(); }))
        return;
    closePort(); // nothing can tell the device
    enterZone();
}

/// [audio] Keys that were retuned for one channel are put back first: the device has one tuning for all.
void MidiOutRtMidi::enterZone()
{
    if (portOpen)
        silence();
    mpeMode = mpeZone = true;
    channel = MPE;
    mpeChannels.useZone(true);
    if (portOpen)
        announceZone();
}

/// [audio] False when there is none. MPE mode stays.
bool MidiOutRtMidi::leaveZone()
{
    if (!mpeZone)
        return false;
    if (portOpen)
        silence();
    mpeZone = false;
    mpeChannels.useZone(false);
    return true;
}

/// The zone comes first, since it puts a device's ranges back. A bend of the manager would bend all.
void MidiOutRtMidi::announceZone()
{
    sendParameter(MpeChannels::MANAGER, midi::ZONE_PARAMETER, MpeChannels::MEMBERS);
    sendParameter(MpeChannels::MANAGER, midi::BEND_RANGE_PARAMETER, DEFAULT_RANGE_CENTS / 100);
    mpeResetPitchBend(MpeChannels::MANAGER);
    sendMemberRange(bendRangeCents());
}

/// The ranges go back by themselves only in a device that knows of zones.
void MidiOutRtMidi::endZone()
{
    mpeAllVoicesOff();
    sendMemberRange(DEFAULT_RANGE_CENTS);
    sendParameter(MpeChannels::MANAGER, midi::ZONE_PARAMETER, 0);
}

/// To each: one would be enough for a device that knows of zones, and another one plays well with this.
void MidiOutRtMidi::sendMemberRange(int cents)
{
    for (int member = MpeChannels::FIRST_MEMBER; member < CHANNELS; ++member)
        sendParameter(member, midi::BEND_RANGE_PARAMETER, cents / 100);
}

/// What sounds is bent anew, as its bend means another pitch now.
void MidiOutRtMidi::changeZoneRange()
{
    sendMemberRange(bendRangeCents());
    for (int member = MpeChannels::FIRST_MEMBER; member < CHANNELS; ++member) {
        if (!mpeChannels.isFree(member))
            sendBend(member, mpeChannels.channelNote[static_cast<size_t>(member)]);
    }
}

void MidiOutRtMidi::sendParameter(int sentChannel, int parameter, int value)
{
    for (const midi::ShortMessage& message : midi::parameterMessages(sentChannel, parameter, value))
        send(message);
    ORLO_AUDIO_DEBUG << "Midi RPN messages sent: channel, parameter, value " << sentChannel << parameter
                     << value;
}
