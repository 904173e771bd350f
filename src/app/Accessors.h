#pragma once

class ApplicationServices;
class AudioOutput;
class MidiOutput;
class MidiPlaying;
class Orlo;
class PdPlayer;
class QString;
class SaveAndLoad;
class Settings;
class StatusNotes;
class StoreAndRecall;

/// How any class reaches the application's parts. Include it in .cpp files only, so that headers do
/// not depend on it.
///
/// The parts are set by the application's constructor, and again by a test that brings its own devices,
/// before any other thread runs; every thread reads them. A part that was not set is null.
namespace app {

struct Parts
{
    ApplicationServices* application = nullptr;
    Orlo* orlo = nullptr;
    PdPlayer* player = nullptr;
    Settings* settings = nullptr;
    AudioOutput* audioOutput = nullptr;
    StoreAndRecall* storeAndRecall = nullptr;
    SaveAndLoad* saveAndLoad = nullptr;
    MidiOutput* midiOutput = nullptr;
    MidiPlaying* midiPlaying = nullptr;
    StatusNotes* statusNotes = nullptr;

    /// Connects the player's signals to the lattice. The lattice knows nothing of sound, so the
    /// owner of both provides the connection.
    void (*connectLattice)(PdPlayer*, Orlo*) = nullptr;
};

/// Replaces all parts.
void setParts(const Parts& parts);
const Parts& parts();

// clang-format off
inline ApplicationServices* application() { return parts().application; }
inline Orlo* orlo() { return parts().orlo; }
inline PdPlayer* player() { return parts().player; }
inline Settings* settings() { return parts().settings; }
inline AudioOutput* audioOutput() { return parts().audioOutput; }
inline StoreAndRecall* storeAndRecall() { return parts().storeAndRecall; }
inline SaveAndLoad* saveAndLoad() { return parts().saveAndLoad; }
inline MidiOutput* midiOutput() { return parts().midiOutput; }
inline MidiPlaying* midiPlaying() { return parts().midiPlaying; }
// clang-format on

/// [gui] Tells the player something in the status line, where it goes away by itself: what a press that did
/// nothing wanted, or that something was done. Without a window it is dropped.
void say(const QString& text);

} // namespace app
