#pragma once

/// What PortAudio needs of ALSA. Its ALSA part aborts the program unless one of ALSA's names is "default"
/// or "dmix", or belongs to no device that is there: so without any configuration, even when JACK is the
/// device that is wanted.
namespace AlsaConfiguration {

/// [any] To be called before each start of PortAudio, which reads the configuration. Adds a name of no device
/// to what this process has of it when it would abort; true then. No file is written.
bool complete();

} // namespace AlsaConfiguration
