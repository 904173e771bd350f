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

/// Over the former text, key by key; each key leaves exactly what was typed.
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
        if (qobject_cast<QMessageBox*>(each) && each->isVisible()) {
            EXPECT_FALSE(each->isModal());
            count += each->close();
        }
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

TEST_F(OptionsDialogTest, TheDistanceOfTheFrequencyFromItsNoteIsShownAndMarked)
{
    const OrloNoteEvent unison(OrloRatio(1, 1));
    player.queueEventGui(&unison);
    settle();
    const auto* name =
        window->orloView()->parentWidget()->parentWidget()->findChild<QLabel*>(QStringLiteral("noteLabel"));
    // The calibration moves the note, and not the frequency; 470 Hz by 114 cents.
    for (const auto& [typed, former, shown] : {std::tuple{"442", 440.0, "-7.85"}, {"470", 442.0, "..."}}) {
        open(former);
        EXPECT_EQ(isMarked(), former != 440.0);
        type(box("A4 ="), typed);
        EXPECT_EQ(settings.calibrationFrequency, former) << "before the edit ends";
        QTest::keyClick(box("A4 ="), Qt::Key_Return);
        EXPECT_EQ(cents(), shown);
        EXPECT_TRUE(isMarked());
        EXPECT_EQ(settings.oneOneFreqTempered, cents() == "...")
            << "on while it is too far, against its name";
        EXPECT_EQ(name->text(), cents() == "..." ? u"G" : u"A")
            << "of the card: G# once 1/1 is no A any more";
    }
    EXPECT_EQ(settings.calibrationFrequency, 470.0);
    EXPECT_EQ(settings.baseFrequency, 440.0);
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(OptionsDialogTest, ANewNoteBringsItsFrequencyUnderTheCalibration)
{
    open(442.0, 220.0, "A 3");
    choose(menu("oneOneNoteEdit"), "Eb 6");
    expectFrequency("1250.17"); // 1250.1669
    EXPECT_EQ(settings.baseNote.toStdString(), "Eb 6");
    EXPECT_EQ(settings.baseNoteFreqRatio, static_cast<float>(220.0 / 442.0)); // the former one
    EXPECT_EQ(cents(), "0");
    EXPECT_FALSE(isMarked());
    // The note that 1/1 has already.
    open(440.0, 440.0, "G 4");
    choose(menu("oneOneNoteEdit"), "A 4");
    EXPECT_TRUE(commands().isEmpty());
    EXPECT_FALSE(isMarked());
}

TEST_F(OptionsDialogTest, SplitMenusOfferWhatTheOctaveHas)
{
    settings.oneOneMenuSplitOctaves = true;
    // The menu, what is chosen; the note then, and as the menu of all has it.
    const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
        {"oneOneOctaveEdit", "8", "Ab 8", "Ab 8"},
        {"oneOneNoteInOctaveEdit", "G", "G 8", "G 8"},
        {"oneOneOctaveEdit", "0", "G 0", "G 8"}}; // a note that is in no table
    open(440.0, 440.0, "Ab 4");
    for (const auto& [name, chosen, after, inTable] : rows) {
        choose(menu(name), chosen);
        EXPECT_EQ(settings.baseNote.toStdString(), after);
        EXPECT_EQ(menu("oneOneNoteEdit")->currentText().toStdString(), inTable);
    }
    EXPECT_EQ(settings.baseFrequency, static_cast<double>(6271.93F)); // of the last one
    clickBox("splitOctavesNotes");
    EXPECT_FALSE(settings.oneOneMenuSplitOctaves || menu("oneOneOctaveEdit")->isVisible());
    EXPECT_TRUE(menu("oneOneNoteEdit")->isVisible() && menu("oneOneNoteInOctaveEdit")->isHidden());
}

TEST_F(OptionsDialogTest, AFrequencyIsNotChangedWhileItIsTypedAndAppliesAtItsEnd)
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
        choose(devices, "ALSA: gone");
        EXPECT_EQ(boxes(), 1);
        EXPECT_EQ(devices->currentIndex(), former);
        soundDevice.broken = {1, 2};
    }
    soundDevice.selectDevice(0); // not by this menu
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
    choose(channels, "MPE zone");
    EXPECT_TRUE(midi.isMpeZone());
    channels->setCurrentIndex(0);
    emit midi.portBack(midi.portName); // shows what is chosen
    EXPECT_EQ(channels->currentIndex(), 17);
    choose(channels, "MTS Ch 16");
    EXPECT_EQ(midi.channel, 15);
    EXPECT_FALSE(midi.isMpeZone());

    const auto lose = [this] {
        midi.system->sendsFail = true;
        midi.voiceOn(0, 100);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !midi.portOpen; }));
        report();
    };
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
    lose();
    EXPECT_EQ(boxes(), 1);
    EXPECT_EQ(ports->currentIndex(), 0);
    midi.system->sendsFail = false;
    ASSERT_TRUE(QTest::qWaitFor([this] { return midi.portOpen.load(); }));
    EXPECT_EQ(ports->currentText().toStdString(), "Synth:in");
    lose();
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
        const double scale = window->orloView()->transform().m11();
        scene::wheel(*window->orloView(), {200, 200}, 480, Qt::ControlModifier);
        EXPECT_EQ(window->orloView()->transform().m11() > scale, !on);
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
        emit midi.portBack(midi.portName);
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
    for (const bool quits : {true, false}) {
        open();
        type(box("1/1 Frequency"), "300");
        if (quits)
            QMetaObject::invokeMethod(qApp, "aboutToQuit");
        else
            window.reset();
        EXPECT_EQ(settings.baseFrequency, 300.0);
    }
}
