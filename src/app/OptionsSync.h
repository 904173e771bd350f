#pragma once

class MainWindow;

/// Options to the program at start, and the program's state back into the options before they are
/// saved. Reaches the parts through the accessors. Graphical thread.
namespace OptionsSync {

/// Sets port, channel and bend range of the MIDI output.
void toMidi();
/// Sets window, base frequency, volume and mono. From then on the options follow the engine.
void toProgram(MainWindow& window);
/// Reads page, window, sound device and MIDI port.
void fromProgram(const MainWindow& window);
/// Stores the index of the sound device. -1, for a lost device, is ignored, so that the next start asks
/// for it again.
void keepDevice(int index);

} // namespace OptionsSync
