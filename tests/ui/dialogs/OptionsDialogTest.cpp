#include "ui/dialogs/OptionsDialog.h"

#include "app/Settings.h"
#include "sound/OrloNoteEvent.h"
#include "support/LogCatcher.h"
#include "ui/WindowFixture.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

void choose(QComboBox* menu, const char* text)
{
    menu->setCurrentText(latin1(text));
    emit menu->activated(menu->currentIndex());
}

/// Over what stood there, key by key; nothing may change under the fingers.
void type(QDoubleSpinBox* box, const char* number)
{
    box->setFocus();
    box->selectAll();
    std::string typed;
    for (const char* key = number; *key; ++key) {
        QTest::keyClick(box, *key);
        typed += *key;
        EXPECT_EQ(box->findChild<QLineEdit*>()->text().toStdString(), typed);
    }
}

/// How many boxes stand beside the work; they are closed.
int boxes()
{
    int count = 0;
    for (QWidget* each : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<QMessageBox*>(each);
        if (!box || !box->isVisible())
            continue;
        EXPECT_FALSE(box->isModal());
        ++count;
        box->close();
    }
    return count;
}

class OptionsDialogTest : public WindowFixture
{
protected:
    OptionsDialogTest() { window->show(); }

    void open(double calibration = 440.0, double frequency = 440.0, const char* note = "A 4")
    {
        if (dialog)
            dialog->close();
        settings.calibrationFrequency = calibration;
        settings.baseFrequency = frequency;
        settings.baseNote = latin1(note);
        press(Qt::Key_Comma, Qt::ControlModifier);
        dialog = window->findChild<OptionsDialog*>();
        ASSERT_TRUE(dialog && dialog->isVisible());
        ASSERT_TRUE(QTest::qWaitFor([this] { return dialog->isActiveWindow(); }));
        commands();
    }

    QLabel* label(const char* text) const
    {
        for (QLabel* label : dialog->findChildren<QLabel*>()) {
            if (label->text() == latin1(text))
                return label;
        }
        qFatal("The dialog says nowhere %s.", text);
    }
    /// The control that a text stands for.
    QDoubleSpinBox* box(const char* caption) const
    {
        return qobject_cast<QDoubleSpinBox*>(label(caption)->buddy());
    }
    QComboBox* menu(const char* name) const { return find<QComboBox>(name); }
    /// What stands before "cents" behind the note.
    std::string cents() const
    {
        const QList<QLabel*> labels = dialog->findChildren<QLabel*>();
        return labels[labels.indexOf(label("cents")) - 1]->text().toStdString();
    }
    bool isMarked() const
    {
        EXPECT_EQ(menu("oneOneNoteEdit")->styleSheet().isEmpty(), label("1/1 Note")->styleSheet().isEmpty());
        return !label("1/1 Note")->styleSheet().isEmpty();
    }
    void clickBox(const char* name) const
    {
        QTest::mouseClick(find<QCheckBox>(name), Qt::LeftButton, {}, {8, 8});
    }

    /// In the box, in the options and, once, on its way to the player.
    void expectFrequency(const char* shown)
    {
        const float frequency = latin1(shown).toFloat();
        EXPECT_EQ(box("1/1 Frequency")->text().toStdString(), shown);
        EXPECT_EQ(settings.baseFrequency, static_cast<double>(frequency));
        EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::BaseFrequencySet, frequency}})) << shown;
    }

    const LogCatcher log;
    OptionsDialog* dialog = nullptr;
};

} // namespace

// The flag, against its name: on while 1/1 is too far from its note to bear that name.
TEST_F(OptionsDialogTest, TheDistanceOfTheFrequencyFromItsNoteIsShownAndMarked)
{
    const std::tuple<double, double, const char*, const char*, bool> rows[] = {
        {442.0, 440.0, "A 4", "-7.85", true},    {440.0, 261.63, "C 4", "+0.03", true}, // 0.0265
        {440.0, 440.0004, "A 4", "0", false},    // half a unit of the third decimal is 0.0005
        {440.0, 440.001, "A 4", "0", true},      // 0.0039
        {440.0, 452.893, "A 4", "+50.00", true}, // 50.00006
        {440.0, 427.47, "A 4", "...", true},     // -50.02
        {440.0, 987.767, "no note", "0", false}, // counts as the B 5
        {0.0, 440.0, "A 4", "...", true},
    };
    for (const auto& [calibration, frequency, note, shown, marked] : rows) {
        open(calibration, frequency, note);
        EXPECT_EQ(cents(), shown) << frequency;
        EXPECT_EQ(settings.oneOneFreqTempered, cents() == "...") << frequency;
        EXPECT_EQ(isMarked(), marked) << frequency;
    }
    // The calibration moves the note, and not the frequency; 470 Hz by 114 cents.
    for (const auto& [typed, former, shown] : {std::tuple{"442", 440.0, "-7.85"}, {"470", 442.0, "..."}}) {
        open(former);
        type(box("A4 ="), typed);
        EXPECT_EQ(settings.calibrationFrequency, former) << "before the edit ends";
        QTest::keyClick(box("A4 ="), Qt::Key_Return);
        EXPECT_EQ(cents(), shown);
        EXPECT_TRUE(isMarked());
        EXPECT_EQ(settings.oneOneFreqTempered, cents() == "...");
    }
    EXPECT_EQ(settings.calibrationFrequency, 470.0);
    EXPECT_EQ(settings.baseFrequency, 440.0);
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(OptionsDialogTest, ANewNoteBringsItsFrequencyUnderTheCalibration)
{
    const std::tuple<double, const char*, const char*> rows[] = {
        {442.0, "Eb 6", "1250.17"}, // 1250.1669
        {349.0, "D# 6", "987.123"}, // 987.1227
        {442.0, "Ab 5", "834.385"}, // 834.3845, as a float a little more or less
    };
    for (const auto& [calibration, note, shown] : rows) {
        open(calibration, 220.0, "A 3");
        choose(menu("oneOneNoteEdit"), note);
        expectFrequency(shown);
        EXPECT_EQ(settings.baseNote.toStdString(), note);
        EXPECT_EQ(settings.baseNoteFreqRatio, static_cast<float>(220.0 / calibration)); // the former one
        EXPECT_EQ(cents(), "0") << note;
        EXPECT_FALSE(isMarked()) << note;
    }
    // The note that 1/1 has already.
    open(440.0, 440.0, "G 4");
    choose(menu("oneOneNoteEdit"), "A 4");
    EXPECT_TRUE(commands().isEmpty());
    EXPECT_FALSE(isMarked());
}

TEST_F(OptionsDialogTest, SplitMenusOfferWhatTheOctaveHas)
{
    settings.oneOneMenuSplitOctaves = true;
    const char* octave = "oneOneOctaveEdit";
    const char* note = "oneOneNoteInOctaveEdit";
    // The note, the menu and what is chosen there; the note then, and as the menu of all notes has it.
    const std::tuple<const char*, const char*, const char*, const char*, const char*> rows[] = {
        {"C 4", octave, "5", "C 5", "C 5"},
        {"C 4", note, "F#", "F# 4", "F# 4"},
        {"Ab 4", octave, "0", "A 0", "A 0"},
        {"B 4", octave, "8", "A 8", "A 8"},
        {"A 8", note, "G", "G 8", "G 8"},
        {"A 8", note, "Ab", "A 8", "A 8"},  // by its place in the shorter menu
        {"G 8", octave, "0", "G 0", "G 8"}, // the same: a note that is in no table
        {"Ab 4", octave, "8", "Ab 8", "Ab 8"}};
    for (const auto& [before, where, chosen, after, inTable] : rows) {
        open(440.0, 440.0, before);
        choose(menu(where), chosen);
        EXPECT_EQ(settings.baseNote.toStdString(), after) << before;
        EXPECT_EQ(menu("oneOneNoteEdit")->currentText().toStdString(), inTable) << before;
    }
    EXPECT_EQ(settings.baseFrequency, static_cast<double>(6644.88F)); // of the last one
    clickBox("splitOctavesNotes");
    EXPECT_FALSE(settings.oneOneMenuSplitOctaves || menu(note)->isVisible() || menu(octave)->isVisible());
    EXPECT_TRUE(menu("oneOneNoteEdit")->isVisible());
}

TEST_F(OptionsDialogTest, AFrequencyIsTypedInPeaceAndAppliesAtItsEnd)
{
    const std::pair<const char*, const char*> rows[] = {
        {"98.4375", "98.4375"}, {"1046.5", "1046.50"}, {"5.0", "20.0000"}, {"300000", "20000.0"}};
    for (const auto& [typed, shown] : rows) {
        open();
        type(box("1/1 Frequency"), typed);
        EXPECT_TRUE(commands().isEmpty()) << typed;
        QTest::keyClick(box("1/1 Frequency"), Qt::Key_Return);
        expectFrequency(shown);
        EXPECT_TRUE(isMarked());
    }
    // A step of the arrows acts at once; ten at once wait for the end.
    open(440.0, 999.5, "A 4");
    box("1/1 Frequency")->setFocus();
    QTest::keyClick(box("1/1 Frequency"), Qt::Key_Up);
    expectFrequency("1000.50");
    QTest::keyClick(box("1/1 Frequency"), Qt::Key_PageUp);
    EXPECT_TRUE(commands().isEmpty());
    menu("oneOneNoteEdit")->setFocus();
    expectFrequency("1010.50");
}

TEST_F(OptionsDialogTest, TheSoundDeviceMenuSaysWhatIsTrue)
{
    open();
    auto* devices = qobject_cast<QComboBox*>(label("Audio Device")->buddy());
    EXPECT_EQ(devices->currentIndex(), 0);
    choose(devices, "JACK: studio");
    EXPECT_EQ(soundDevice.selectedDevice(), 1);

    for (const int former : {1, -1}) {
        if (former == -1)
            soundDevice.broken = {1, 2};
        choose(devices, "ALSA: gone");
        EXPECT_EQ(boxes(), 1);
        EXPECT_EQ(devices->currentIndex(), former);
    }
    soundDevice.selectDevice(0); // by whomever
    EXPECT_EQ(devices->currentIndex(), 0);
}

TEST_F(OptionsDialogTest, TheMidiMenusOpenAndClosePorts)
{
    open();
    QComboBox* ports = menu("midiOutputDeviceMenu");
    QComboBox* channels = menu("midiOutputChannelMenu");
    choose(ports, "Third:in");
    EXPECT_EQ(midi.portName.toStdString(), "Third:in");
    midi.system->take();
    choose(ports, "Third:in"); // is open already
    EXPECT_TRUE(midi.system->take().empty());
    choose(channels, "MTS Ch 16");
    EXPECT_EQ(midi.channel, 15);

    midi.system->opensFail = true;
    choose(ports, "Synth:in");
    EXPECT_EQ(boxes(), 1);
    EXPECT_EQ(ports->currentIndex(), 0);
    midi.system->opensFail = false;
    choose(ports, "Synth:in");
    choose(ports, "- deactivated -");
    EXPECT_FALSE(midi.portOpen);
    choose(ports, "Synth:in");
    dialog->close();
    midi.system->sendsFail = true;
    midi.voiceOn(0, 100);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !midi.portOpen; }));
    report();
    EXPECT_EQ(boxes(), 1);
    EXPECT_EQ(ports->currentIndex(), 0);
    midi.system->sendsFail = false;
    ASSERT_TRUE(QTest::qWaitFor([this] { return midi.portOpen.load(); }));
    EXPECT_EQ(ports->currentText().toStdString(), "Synth:in");
    midi.system->sendsFail = true;
    midi.voiceOn(0, 100);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !midi.portOpen; }));
    choose(ports, "- deactivated -"); // is shown already, but the port is waited for
    EXPECT_TRUE(midi.missingPort().isEmpty());
}

TEST_F(OptionsDialogTest, GlissandoRangesApplyAtTheEndOfTheirEdit)
{
    open();
    choose(menu("midiOutputDeviceMenu"), "Synth:in");
    choose(menu("midiOutputChannelMenu"), "MPE");
    type(box("G-slider "), "9600");
    EXPECT_TRUE(commands().isEmpty());
    type(box("g-slider "), "700"); // the other one has lost the focus
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::GlissOneReset, 1.0F}}));
    type(box("MIDI MPE limit "), "9550"); // with 50 of a key's distance 96 semitones
    EXPECT_EQ(commands(), (QList<Command>{{OrloEvent::GlissTwoReset, 1.0F}}));
    QTest::keyClick(box("MIDI MPE limit "), Qt::Key_Return);
    EXPECT_EQ(midi.pitchBendRangeCents, 9600);
    EXPECT_EQ(settings.glissOneRangeCents, 9600.0F);
    EXPECT_EQ(settings.glissTwoRangeCents, 700.0F);
    box("MIDI MPE limit ")->setValue(1e6);
    EXPECT_EQ(settings.glissRangeMPECents, 9550);
}

TEST_F(OptionsDialogTest, SwitchesAndMenusWriteTheirOption)
{
    for (const bool on : {false, true}) {
        settings.centralNodeColourRelativeMode = on;
        settings.maintainMacroParameters = on;
        settings.softNodeReset = on;
        settings.orloZoomMode = on ? 2 : 0;
        open();
        for (const char* name : {"centralNodePIRM", "maintainMacros", "allowZoom", "softNodeReset"})
            clickBox(name);
        EXPECT_NE(settings.centralNodeColourRelativeMode, on);
        EXPECT_NE(settings.maintainMacroParameters, on);
        EXPECT_NE(settings.softNodeReset, on);
        EXPECT_EQ(settings.orloZoomMode, on ? 0 : 6);
    }
    choose(menu("centsDisplayDecimals"), "2");
    EXPECT_EQ(settings.centsShowDecimals, 2);
    choose(menu("updateIntervalBox"), "monthly");
    EXPECT_EQ(settings.updateCheckInterval, 2);
    choose(menu("numberOfVoicesMenu"), "24");
    EXPECT_EQ(settings.mainPatchNumberOfVoices, 24);
    EXPECT_EQ(boxes(), 1) << "a restart is needed";
}

TEST_F(OptionsDialogTest, RestrictionsTakeMidiAndTheRangesAway)
{
    midi.selectPort(0);
    midi.setChannel(4);
    for (const bool restricted : {true, false}) {
        window->applyRestrictions(restricted);
        if (restricted)
            open(); // a new dialog knows too
        EXPECT_EQ(menu("midiOutputDeviceMenu")->currentIndex(), restricted ? 0 : 1);
        EXPECT_EQ(menu("midiOutputChannelMenu")->currentIndex(), restricted ? 0 : 5);
        for (const char* control : {"MIDI Output", "G-slider ", "g-slider ", "MIDI MPE limit "})
            EXPECT_NE(label(control)->buddy()->isEnabled(), restricted) << control;
    }
    EXPECT_TRUE(midi.portOpen);
    EXPECT_EQ(midi.channel, 4);
}

TEST_F(OptionsDialogTest, ClosesByItsKeysFromAnyControlAndComesBackWhereItWas)
{
    const OrloNoteEvent note(OrloRatio(3, 2));
    player.queueEventGui(&note);
    settle();
    QPoint place(300, 120);
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Comma}) {
        for (const char* caption : {"Audio Device", "1/1 Frequency"}) {
            open();
            dialog->move(place);
            chords.storedChords()->insert(0, {OrloRatio(5, 4)});
            QWidget* control = label(caption)->buddy();
            control->setFocus();
            QTest::keyClick(control, key, key == Qt::Key_Comma ? Qt::ControlModifier : Qt::NoModifier);
            EXPECT_FALSE(dialog->isVisible()) << caption;
            EXPECT_EQ(commands().value(0), Command(OrloEvent::NodesRecalled, 1.0F));
            EXPECT_TRUE(chords.isChordEmpty(0));
            open();
            EXPECT_EQ(dialog->pos(), place) << caption;
            place += QPoint(10, 5);
            press(Qt::Key_Comma, Qt::ControlModifier); // the window's key
            EXPECT_FALSE(dialog->isVisible());
        }
    }
    settle();
    EXPECT_EQ(player.getAllSoundingRatios(), QList<OrloRatio>{OrloRatio(3, 2)});
}

TEST_F(OptionsDialogTest, OptionsWrittenByHandNeitherBreakItNorChange)
{
    settings.oneOneMenuSplitOctaves = true;
    settings.centsShowDecimals = 7;
    settings.mainPatchNumberOfVoices = 7;
    settings.glissTwoRangeCents = 1e6F;
    open(0.0, 1e9, "Q");
    EXPECT_EQ(settings.centsShowDecimals, 7);
    EXPECT_EQ(settings.mainPatchNumberOfVoices, 7);
    EXPECT_EQ(settings.glissTwoRangeCents, 1e6F);
    EXPECT_EQ(settings.calibrationFrequency, 0.0);
    choose(menu("oneOneOctaveEdit"), "4"); // without a calibration it has no pitch, and so the lowest
    EXPECT_EQ(settings.baseNote.toStdString(), "B 4");
    EXPECT_EQ(settings.baseFrequency, 20.0);
}

TEST_F(OptionsDialogTest, WhatIsBeingTypedAtTheEndStillCounts)
{
    open();
    type(box("1/1 Frequency"), "300");
    QMetaObject::invokeMethod(qApp, "aboutToQuit");
    EXPECT_EQ(settings.baseFrequency, 300.0);
    open();
    type(box("1/1 Frequency"), "310");
    window.reset();
    EXPECT_EQ(settings.baseFrequency, 310.0);
}
