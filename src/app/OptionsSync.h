#pragma once

class MainWindow;

/// Options to the program at start, and the program's state back into the options before they are
/// saved. Reaches the parts through the accessors. Graphical thread.
namespace OptionsSync {

/// Port, channel and range of the MIDI output.
void toMidi();
/// Window, base frequency, volume and mono. From then on the options follow the engine.
void toProgram(MainWindow& window);
/// Page, window, sound device and MIDI port.
void fromProgram(const MainWindow& window);
/// The index of a sound device, or -1 for one that is lost: that one is wanted back at the next start.
void keepDevice(int index);

} // namespace OptionsSync
