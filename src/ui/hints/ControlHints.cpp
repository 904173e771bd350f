#include "ui/hints/ControlHints.h"

#include <QLabel>
#include <QWidget>

namespace hints {

namespace {

constexpr qsizetype LINE_LENGTH = 62; // letters

struct Row
{
    const char* control; // its object name, or a name used by its maker alone
    const char* tip;     // one or two sentences, then the keys
    const char* name = nullptr;
};

// clang-format off
constexpr Row ROWS[] = {
    // The upper panel.
    {"logoLabel", "", "Brevick Tuning Orlo"},
    {"macroSlider", "Shapes the notes that start from now on, and what is selected. (Let go with Alt: back to its default. Alt+M: all of them)", "Patch parameter %1"},
    {"unusedMacroSlider", "This patch has no such parameter."},
    {"patchDecButton", "Goes to the previous patch. A patch is a kind of sound.", "Previous patch"},
    {"patchMenu", "The patch, which is the kind of sound. (Ctrl+1 to Ctrl+0: the first ten)", "Patch"},
    {"patchIncButton", "Goes to the next patch. A patch is a kind of sound.", "Next patch"},
    {"loadPatchButton", "Opens a patch from a file: a voice made with Pure Data."},
    {"optionsButton", "Options: sound device, MIDI, the pitch of 1/1 and more. (Ctrl+,)", "Options"},
    {"menuButton", "Menu: help and keys (F1), first steps, playing from MIDI, harmony (Ctrl+D), Helmholtz-Ellis notation, chords to files and Scala files to chords, full screen (F11), quit (Ctrl+Q).", "Menu"},

    // How lattice and cards are shown.
    {"circlesViewButton", "Shows the small balls around the large ones, as flowers. (F)"},
    {"grapesViewButton", "Shows the small balls above and below the large ones, by height of pitch. (G)"},
    {"absoluteModeButton", "Colours and ratios are seen from 1/1, wherever the lattice has moved. (A)"},
    {"relativeModeButton", "Colours and ratios are seen from the ball in the centre. (R)"},
    {"normalizeRatiosButton", "Shows all ratios within one octave, so 3/2 for 3/1. What sounds stays. (N)"},
    {"soundgrapeColourButton", "Shows on each card which primes lead to its pitch, in their colours. (C)"},
    {"soundgrapeBWButton", "Shows on each card which primes lead to its pitch, in black and white. (B)"},
    {"expandOrloButton", "Enlarges the lattice, or brings back the upper panel and the cards. (Ctrl+F)", "Enlarge the lattice"},
    {"infoLabel1", "The steps by which the lattice has moved away from 1/1."},
    {"infoLabel2", "The frequencies of the ball in the centre and of 1/1."},

    // Glissando and volume.
    {"glissButton", "Shows the G slider, for wide glides of what is selected. (Ctrl+G: both sliders)", "First glissando slider"},
    {"glissFineButton", "Shows the g slider, for small glides of what is selected. (Ctrl+G: both sliders)", "Second glissando slider"},
    {"glissResetButton", "Moves both glissando sliders back to the middle.", "Centre both glissando sliders"},
    {"glissSliderBig", "Moves what is selected up and down in pitch. A press with Alt or the middle button selects a ball. (Let go with Alt: back to the middle)", "First glissando slider"},
    {"glissFineSliderBig", "Moves what is selected up and down in pitch, by small amounts. A press with Alt or the middle button selects a ball. (Alt+G, or let go with Alt: back to the middle)", "Second glissando slider"},
    {"volumeSlider", "The volume of everything. (O louder, K softer, Ctrl+K silent, Ctrl+O or let go with Alt: three quarters)", "Master volume"},

    // The column of the primes. %1 is the prime or its step's ratio, %2 the step in cents.
    {"primeOne", "1 is where the lattice begins. The primes below are the steps that lead away from it."},
    {"primeFixed", "Prime %1: a step of %2. The large balls stand on it, so that it is always on."},
    {"primeToggle", "Prime %1: a step of %2. A press switches its balls off, or on again. (X: the prime with the halo)"},
    {"transposeArrow", "Moves the whole lattice %1 by %2. (%3: the prime with the halo, which Up and Down choose)"},
    {"transposeArrowGone", "No further step of this prime: 1/1 would leave the range from 20 to 20,000 Hz, or a ratio would grow too long."},

    // Sound.
    {"stopAllButton", "Ends all sound at once, held notes too. (Ctrl+Esc. Esc alone lets notes fade and leaves held ones)"},
    {"monoButton", "One note at a time: each press ends the note before. (M)"},
    {"polyButton", "Many notes at a time. (P)"},
    {"chordHoldButton", "Holds what sounds now, until it is pressed again. (H. Alt+H: holds anew)", "Hold"},

    // Chords.
    {"chordRowButton_01", "The number keys play the chords 1 to 10. (U)", "Number keys play chords 1 to 10"},
    {"chordRowButton_02", "The number keys play the chords 11 to 20. (J)", "Number keys play chords 11 to 20"},
    {"chordButton_", "(Key %2 while this row is lit. Alt+%2: stores what sounds, without a question)", "Chord %1"},
    {"chordStoreToButton", "While this is lit, a press on a number stores what sounds there. (Ctrl+T)"},
    {"chordClearButton", "While this is lit, a press on a number clears its chord. (Ctrl+C)"},
    {"chordAdditiveRecallButton", "While this is lit, a chord is added to what sounds, or taken away from it. (Ctrl+A: the next way)", "Recall adds and takes away"},
    {"chordAlternatingRecallButton", "While this is lit, each note of a chord changes over: what sounds ends, what rests begins. (Ctrl+A: the next way)", "Recall changes notes over"},
    {"chordClearAllButton", "Clears all twenty chords, after a question. (Alt+C)"},
    {"saveChordDirectoryButton", "Chooses the folder where the banks of chords lie.", "Folder of the chord banks"},
    {"saveChordBankMenu", "The bank, which is a folder of presets.", "Chord bank"},
    {"saveChordSetMenu", "The preset, a file that keeps all twenty chords. Choose a bank first.", "Chord preset"},
    {"saveChordSetLoadButton", "Loads the chosen preset in place of the twenty chords. (Ctrl+L)"},
    {"saveChordSetSaveButton", "Saves the twenty chords to the chosen preset. (Ctrl+S)"},

    // Options.
    {"numberOfVoicesMenu", "How many notes can sound together, those that fade away among them. Holds from the next start on."},
    {"audioDevice", "Where the sound goes. A choice acts at once."},
    {"midiDevice", "Where the notes are sent as MIDI, with their exact pitches, beside the sound of the program."},
    {"midiOutputChannelMenu", "How exact pitches are sent: MPE bends each note on a channel of its own, an MPE zone is announced first, MTS retunes single keys of one channel. Choose what the receiver knows.", "MIDI mode and channel"},
    {"calibrationEdit", "The frequency of A4, from which the notes have their names and 1/1 its frequency."},
    {"splitOctavesNotes", "Chooses the note of 1/1 by two menus, one for the note and one for its octave."},
    {"oneOneNoteEdit", "The note that 1/1 stands for. A choice sets the frequency too; red means that the frequency is not the note's."},
    {"oneOneNoteInOctaveEdit", "The note that 1/1 stands for. A choice sets the frequency too.", "1/1 note within its octave"},
    {"oneOneOctaveEdit", "The octave of the note that 1/1 stands for. A choice sets the frequency too.", "Octave of the 1/1 note"},
    {"oneOneCentsLabel", "How far the frequency of 1/1 lies from its note; \"...\" is more than 50 cents."},
    {"oneOneFrequencyEdit", "The frequency of 1/1, from 20 to 20,000 Hz. All other pitches follow from it."},
    {"centsDisplayDecimals", "How exactly a card says how far its pitch lies from the note."},
    {"glissOneRangeEdit", "How far the G slider reaches from the middle, up and down; 1200 cents are an octave. A new range takes back its glides."},
    {"glissTwoRangeEdit", "How far the g slider reaches from the middle, up and down; 100 cents are a semitone. A new range takes back its glides."},
    {"glissRangeMPEEdit", "How far glides bend the notes that are sent by MPE. At 0 no bend is sent beyond the rounding to the nearest key."},
    {"centralNodePIRM", "Shows by a pale ball in the centre that the lattice has moved away from 1/1."},
    {"maintainMacros", "Keeps the sliders of the upper panel where they are when another patch is chosen. Else each patch brings its own values."},
    {"allowZoom", "Lets the lattice be zoomed, by Ctrl and the wheel or by two fingers."},
    {"softNodeReset", "A note that is reset begins anew. Else it goes back to its pitch while it sounds."},
    {"updateIntervalBox", "How often the program asks for a newer version when it starts."},
    {"updateCheckButton", "Asks now whether there is a newer version."},

    // Playing from MIDI.
    {"midiInputList", "The MIDI inputs that are there. Keys of those with a mark play. One that goes away comes back by itself.", "MIDI inputs"},
    {"layoutList", "What the keys play. The first layout with a mark that has a key decides on it. A double click renames.", "Layouts"},
    {"layoutAddButton", "Adds a layout of a kind."},
    {"layoutRemoveButton", "Removes the chosen layout, after a question."},
    {"layoutUpButton", "Moves the chosen layout up: it goes before the others."},
    {"layoutDownButton", "Moves the chosen layout down: others go before it."},
    {"layoutUndoButton", "Takes back the last change of the layouts."},
    {"layoutInputMenu", "The input whose keys play by this layout.", "Input of the layout"},
    {"layoutFirstChannelEdit", "The first of the channels whose keys play by this layout.", "First channel"},
    {"layoutLastChannelEdit", "The last of the channels whose keys play by this layout.", "Last channel"},
    {"layoutRootKeyEdit", "The key that plays 1/1, by its MIDI number; 60 is the middle C."},
    {"learnKeysButton", "While this is lit, a press on a ball and one on a key belong to each other, in either order. The keys are silent meanwhile."},
    {"learnAnyChannelBox", "A key that is learned plays on every channel. Else on the one on which it was pressed."},
    {"learnedKeysList", "The keys that were learned, and the pitch of each as seen from 1/1.", "Learned keys"},
    {"forgetKeyButton", "Takes the chosen key out of the layout."},
    {"layoutPrimeLimitMenu", "The highest prime of the ratios among which each key chooses the simplest."},
    {"layoutWindowEdit", "How far a ratio may lie from the tempered step. Where none is as near, the nearest is taken."},
    {"layoutAlongEdit", "The steps from a key to the next, as /3 for up by 3, /-5 for down by 5; 2 is the octave."},
    {"layoutAcrossEdit", "The steps from a row to the next, as /3 for up by 3, /-5 for down by 5; 2 is the octave."},
    {"layoutRowsMenu", "Where the next row begins: after a number of keys, or on the next channel, as hexagonal keyboards send it."},
    {"layoutRowLengthEdit", "After how many keys the next row begins."},
    {"layoutRootChannelEdit", "The channel of the row with 1/1."},
    {"layoutScaleButton", "Reads a scale from a file of the Scala format."},
    {"layoutKeyboardButton", "Reads which key plays which degree from a file of the Scala format."},
    {"layoutNoKeyboardButton", "Each key plays the next degree of the scale.", "No keyboard file"},
    {"layoutFirstHarmonicEdit", "The number that the key of 1/1 has; the keys count on from there."},
    {"layoutOctavesEdit", "By how many octaves number 1 lies away from 1/1: below it, or above it for subharmonics."},
    {"layoutBeyond31Menu", "What becomes of numbers with a prime beyond 31, which the lattice does not have."},
    {"bendRangeEdit", "How far the wheel of a keyboard bends, up and down; a keyboard may tell another range."},
    {"pressureMacroMenu", "Which parameter of its note the pressure on a key moves."},
    {"timbreMacroMenu", "Which parameter of its note controller 74 moves, which keyboards send for slides."},
    {"heedMpeBox", "A keyboard that announces a zone bends and shapes each note by itself, on channels of its own."},
    {"showKeysBox", "Shows beside each ball the key that plays it, also when this window is closed."},

    // Harmony.
    {"harmonyFloatButton", "Shows the harmony of what sounds in a window of its own."},
    {"harmonyDockButton", "Puts the harmony of what sounds beside the lattice again."},
    {"harmonyCloseButton", "Closes the harmony of what sounds. (Ctrl+D)", "Close the harmony"},

    // Chords to files and from them.
    {"chordSourceMenu", "Which pitches go to the file: the notes that sound, a chord, all chords of a preset, or each ball that can be pressed.", "Pitches"},
    {"chordSlotMenu", "The chord that goes to the file.", "Chord"},
    {"chordPresetMenu", "The preset whose pitches go to the file. The chords in memory stay.", "Preset"},
    {"chordPresetButton", "Reads a preset from any folder. The chords in memory stay."},
    {"chordFormatMenu", "What the file is for: programs that read Scala files, instruments that are tuned by MIDI, Pure Data, or people.", "Format"},
    {"chordRangeMenu", "Within the octave each pitch is moved into the octave above 1/1. As played it stays where it sounds.", "Range"},
    {"chordPreview", "What the file will hold."},
    {"chordSaveButton", "Asks for a name and saves the file. A Scala scale is saved with the keyboard that gives its true pitch."},
    {"chordCopyButton", "Puts ratios, cents and Hz into the clipboard, as text."},
    {"chordCloseButton", "Closes this window. (Escape)"},
    {"scalaScaleButton", "Opens a scale of the Scala format. It can also be dropped on the window.", "Open a scale"},
    {"scalaKeyboardButton", "Opens a keyboard of the Scala format, which names the degrees that belong to the chord.", "Open a keyboard"},
    {"scalaNoKeyboardButton", "Takes all degrees of the scale.", "No keyboard"},
    {"scalaLeftOutList", "The lines of the file that cannot be notes of a chord, and why.", "Left out"},
    {"scalaSlotMenu", "The chord that the scale becomes. One that is there is replaced.", "Chord"},
    {"scalaStoreButton", "Stores the pitches as the chosen chord."},
    {"scalaUndoButton", "Takes back what was stored last from this window. It can be done until the window is closed."},
    {"scalaCloseButton", "Closes this window. (Escape)"},
};
// clang-format on

const Row* find(QStringView control)
{
    for (const Row& row : ROWS) {
        if (control == QLatin1StringView(row.control))
            return &row;
    }
    return nullptr;
}

QString filled(const char* text, int number)
{
    QString result = QString::fromLatin1(text);
    if (number > 0)
        result.replace(QStringLiteral("%1"), QString::number(number))
            .replace(QStringLiteral("%2"), QString::number(number % 10));
    return result;
}

void giveRow(QWidget* control, const Row& row, int number)
{
    control->setToolTip(inLines(filled(row.tip, number)));
    if (row.name)
        control->setAccessibleName(filled(row.name, number));
}

qsizetype lengthWithoutNumber(const QString& name)
{
    qsizetype length = name.size();
    while (length > 0 && name[length - 1].isDigit())
        --length;
    return length;
}

} // namespace

QString inLines(const QString& text)
{
    QString lines;
    qsizetype length = 0;
    for (const QString& word : text.split(u' ')) {
        const bool beginsKeys = word.startsWith(u'(') && lines.endsWith(u'.');
        const bool breaks = beginsKeys || length + 1 + word.size() > LINE_LENGTH;
        if (!lines.isEmpty())
            lines += breaks ? u'\n' : u' ';
        length = (breaks ? 0 : length + 1) + word.size();
        lines += word;
    }
    return lines;
}

QString text(const char* row, int number)
{
    const Row* found = find(QString::fromLatin1(row));
    return found ? filled(found->tip, number) : QString();
}

void give(QWidget* control, const char* row)
{
    if (const Row* found = find(QString::fromLatin1(row)))
        giveRow(control, *found, 0);
}

void giveAll(QWidget* parent)
{
    const QList<QWidget*> widgets = parent->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        const QString name = widget->objectName();
        const qsizetype length = lengthWithoutNumber(name);
        if (const Row* row = find(name))
            giveRow(widget, *row, 0);
        else if (const Row* series = find(QStringView(name).first(length)))
            giveRow(widget, *series, QStringView(name).sliced(length).toInt());
    }
    for (QWidget* widget : widgets) {
        const auto* caption = qobject_cast<QLabel*>(widget);
        if (caption && caption->buddy() && widget->toolTip().isEmpty())
            widget->setToolTip(caption->buddy()->toolTip());
    }
}

} // namespace hints
