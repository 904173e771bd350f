#pragma once

#include "sound/OrloEvent.h"
#include "ui/panel/ChordPanel.h"
#include "ui/panel/ChordPresetMenus.h"
#include "ui/panel/DisplaySwitches.h"
#include "ui/panel/GlissandoSliders.h"
#include "ui/panel/MacroSliders.h"
#include "ui/panel/MonoPolyButtons.h"
#include "ui/panel/PatchMenu.h"
#include "ui/panel/PressModeButtons.h"
#include "ui/panel/SliderSnapBack.h"
#include "ui/panel/VolumeControl.h"

namespace Ui {
class MainWindow;
}

/// The parts of the panel, each with its widgets of the form. What one of them wants of another is
/// connected here.
struct PanelParts
{
    explicit PanelParts(const Ui::MainWindow& form);

    void setRestricted(bool restricted);

    // Built once and queued as they are: by the button that stops all, by Escape, and before the lattice is
    // built anew.
    const OrloEvent allNotesOff{OrloEvent::AllNotesOff, 1.0F};
    const OrloEvent allNotesOffForced{OrloEvent::AllNotesOffForced, 1.0F};
    const OrloEvent nodesDeselectAll{OrloEvent::NodesDeselectAll, 1.0F};

    DisplaySwitches display;
    VolumeControl volume;
    MonoPolyButtons monoPoly;
    MacroSliders macros;
    GlissandoSliders glissando;
    SliderSnapBack snapBack;
    PressModeButtons pressMode;
    ChordPanel chords;
    ChordPresetMenus chordPresets;
    PatchMenu patches;

private:
    /// While they are moved.
    void showValuesOfSliders(const Ui::MainWindow& form);
};
