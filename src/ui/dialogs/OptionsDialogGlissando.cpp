// The ranges of the glissando sliders.
#include "ui/dialogs/OptionsDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "external/MidiOutput.h"
#include "external/MpeBend.h"
#include "sound/PdPlayer.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/hints/ControlHints.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>

using namespace optionspage;

namespace {

constexpr int HEADING_SPACING = 8;
constexpr double HIGHEST_RANGE = 9600.0; // cents
// With the 50 cents of the distance to a key it makes 96 semitones, the most that MPE can have.
constexpr double HIGHEST_MPE_RANGE = 9550.0;

} // namespace

void OptionsDialog::addGlissandoRows(QVBoxLayout* layout)
{
    auto* heading = label(QStringLiteral("Glissando range (one way)"));
    heading->setObjectName(QStringLiteral("optionsHeading"));
    auto* section = new QVBoxLayout;
    section->setSpacing(HEADING_SPACING);
    layout->addLayout(section);
    section->addWidget(heading);
    QGridLayout* grid = addGrid(section);
    const Settings* settings = app::settings();
    struct Row
    {
        QString caption;
        const char* hint;
        double highest;
        double value;
        void (OptionsDialog::*slot)(double);
    };
    const Row rows[] = {
        {QStringLiteral("G-slider "), "glissOneRangeEdit", HIGHEST_RANGE,
         static_cast<double>(settings->glissOneRangeCents), &OptionsDialog::onGlissOneRangeChanged},
        {QStringLiteral("g-slider "), "glissTwoRangeEdit", HIGHEST_RANGE,
         static_cast<double>(settings->glissTwoRangeCents), &OptionsDialog::onGlissTwoRangeChanged},
        {QStringLiteral("MIDI MPE limit "), "glissRangeMPEEdit", HIGHEST_MPE_RANGE,
         static_cast<double>(settings->glissRangeMPECents), &OptionsDialog::onGlissRangeMPEChanged},
    };
    for (const auto& [caption, hint, highest, value, slot] : rows) {
        auto* box = new QDoubleSpinBox;
        setUpNumber(box, 0.0, highest, 0);
        box->setKeyboardTracking(false);
        hints::give(box, hint);
        box->setValue(value);
        connect(box, &QDoubleSpinBox::valueChanged, this, slot);
        QHBoxLayout* controls = row({box, label(QStringLiteral("cents"))});
        controls->addStretch(1);
        addGridRow(grid, label(caption, box), controls);
        mRangeEdits.append(box);
    }
}

void OptionsDialog::onGlissOneRangeChanged(double value)
{
    app::settings()->glissOneRangeCents = static_cast<float>(value);
    app::player()->queueGui(OrloEvent::GlissOneReset, 1.0F);
}

void OptionsDialog::onGlissTwoRangeChanged(double value)
{
    app::settings()->glissTwoRangeCents = static_cast<float>(value);
    app::player()->queueGui(OrloEvent::GlissTwoReset, 1.0F);
}

void OptionsDialog::onGlissRangeMPEChanged(double value)
{
    const int cents = static_cast<int>(value);
    app::settings()->glissRangeMPECents = cents;
    app::midiOutput()->mpeSetPitchBendRange(mpe::bendRange(cents));
}
