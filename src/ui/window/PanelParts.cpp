#include "ui/window/PanelParts.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "ui/hints/SliderValueTip.h"
#include "ui_MainWindow.h"

namespace {

DisplaySwitches::Widgets displayWidgets(const Ui::MainWindow& form)
{
    return {.pages = form.centralStack,
            .circlesView = form.circlesViewButton,
            .grapesView = form.grapesViewButton,
            .absoluteMode = form.absoluteModeButton,
            .relativeMode = form.relativeModeButton,
            .normalizeRatios = form.normalizeRatiosButton,
            .soundgrapeColour = form.soundgrapeColourButton,
            .soundgrapeBW = form.soundgrapeBWButton};
}

QList<QSlider*> macroSliders(const Ui::MainWindow& form)
{
    return {form.macroSlider1, form.macroSlider2, form.macroSlider3, form.macroSlider4,
            form.macroSlider5, form.macroSlider6, form.macroSlider7, form.macroSlider8};
}

QList<QLabel*> macroLabels(const Ui::MainWindow& form)
{
    return {form.macroLabel1, form.macroLabel2, form.macroLabel3, form.macroLabel4,
            form.macroLabel5, form.macroLabel6, form.macroLabel7, form.macroLabel8};
}

GlissandoSliders::Widgets glissandoWidgets(const Ui::MainWindow& form)
{
    return {.coarse = form.glissSliderBig,
            .fine = form.glissFineSliderBig,
            .coarseButton = form.glissButton,
            .fineButton = form.glissFineButton,
            .centreLine = form.glissCLineCenter};
}

ChordPanel::Widgets chordWidgets(const Ui::MainWindow& form)
{
    return {.chordFrame = form.chordFrame,
            .storeFrame = form.chordStoreFrame,
            .chords = {form.chordButton_01, form.chordButton_02, form.chordButton_03, form.chordButton_04,
                       form.chordButton_05, form.chordButton_06, form.chordButton_07, form.chordButton_08,
                       form.chordButton_09, form.chordButton_10, form.chordButton_11, form.chordButton_12,
                       form.chordButton_13, form.chordButton_14, form.chordButton_15, form.chordButton_16,
                       form.chordButton_17, form.chordButton_18, form.chordButton_19, form.chordButton_20},
            .row1 = form.chordRowButton_01,
            .row2 = form.chordRowButton_02,
            .storeTo = form.chordStoreToButton,
            .clear = form.chordClearButton,
            .additiveRecall = form.chordAdditiveRecallButton,
            .alternatingRecall = form.chordAlternatingRecallButton,
            .hold = form.chordHoldButton};
}

ChordPresetMenus::Widgets chordPresetWidgets(const Ui::MainWindow& form)
{
    return {.frame = form.chordPresetsFrame,
            .banks = form.saveChordBankMenu,
            .presets = form.saveChordSetMenu,
            .load = form.saveChordSetLoadButton,
            .save = form.saveChordSetSaveButton};
}

} // namespace

PanelParts::PanelParts(const Ui::MainWindow& form)
    : display(displayWidgets(form), app::settings())
    , volume(form.volumeSlider, app::player())
    , monoPoly(form.monoButton, form.polyButton, app::player())
    , macros(macroSliders(form), macroLabels(form), app::player())
    , glissando(glissandoWidgets(form), app::player())
    , pressMode(
          {form.toggleModeButton, form.shiftModeButton, form.removeModeButton, form.selectApplyModeButton},
          app::application())
    , chords(chordWidgets(form), app::storeAndRecall(), app::player(), app::settings())
    , chordPresets(chordPresetWidgets(form), app::settings(), app::application(), app::saveAndLoad())
    , patches(form.patchMenu, app::player(), app::settings())
{
    QObject::connect(&chords, &ChordPanel::polyphonicWanted, &chords, [this] { monoPoly.choosePoly(); });
    QObject::connect(&chordPresets, &ChordPresetMenus::chordsLoaded, &chords,
                     &ChordPanel::refreshChordButtons);
    QObject::connect(&patches, &PatchMenu::patchOpened, &patches, [this] {
        volume.queueVolume();
        macros.queueAllMacros();
    });

    for (int macro = 0; macro < macros.sliders().size(); ++macro)
        snapBack.add(macros.sliders()[macro], [this, macro] { return macros.defaultPosition(macro); });
    for (QSlider* slider : {form.glissSliderBig, form.glissFineSliderBig})
        snapBack.add(slider, [slider] { return GlissandoSliders::centreOf(slider); });
    snapBack.add(form.volumeSlider, [this] { return volume.defaultPosition(); });
    showValuesOfSliders(form);
}

void PanelParts::showValuesOfSliders(const Ui::MainWindow& form)
{
    for (int macro = 0; macro < macros.sliders().size(); ++macro)
        new SliderValueTip(macros.sliders()[macro], [this, macro] { return macros.valueText(macro); });
    new SliderValueTip(form.volumeSlider, [this] { return volume.valueText(); });

    const Settings* settings = app::settings();
    for (const auto& [slider, range] : {std::pair{form.glissSliderBig, &settings->glissOneRangeCents},
                                        {form.glissFineSliderBig, &settings->glissTwoRangeCents}}) {
        new SliderValueTip(
            slider, [slider = slider, range = range] { return GlissandoSliders::valueText(slider, *range); });
        QObject::connect(slider, &QSlider::sliderMoved, &chords, &GlissandoSliders::tellWhenIdle);
    }
}

void PanelParts::setRestricted(bool restricted)
{
    chords.setRestricted(restricted);
    chordPresets.setRestricted(restricted);
    glissando.setRestricted(restricted);
}
