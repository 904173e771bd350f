#include "ui/window/PressHelp.h"

#include "ui/lattice/BallPress.h"

#include <QKeySequence>

namespace {

QString effectOf(BallPress press)
{
    switch (press) {
    case BallPress::None: break;
    case BallPress::Note: return QStringLiteral("start or end its note");
    case BallPress::Transpose: return QStringLiteral("transpose: this pitch becomes the centre");
    case BallPress::SelectToggle:
        return QStringLiteral("select or deselect it: the glissando sliders and the sliders of the patch "
                              "move what is selected");
    case BallPress::Reset: return QStringLiteral("reset its glissando and its sliders");
    case BallPress::ResetAndDeselect: return QStringLiteral("reset and deselect it");
    }
    return {};
}

/// As the balls themselves read the modifiers.
HelpSection ballHelp()
{
    HelpSection section{QStringLiteral("A ball or a small ball"), {}};
    const Qt::KeyboardModifiers held[] = {Qt::NoModifier, Qt::ShiftModifier, Qt::AltModifier,
                                          Qt::ControlModifier, Qt::ControlModifier | Qt::AltModifier};
    for (const Qt::KeyboardModifiers modifiers : held) {
        const QString keys = QKeySequence(modifiers.toInt()).toString(QKeySequence::NativeText);
        section.add(keys + QStringLiteral("press"), effectOf(ballPressFor(modifiers)));
    }
    section.add(QStringLiteral("middle button"), effectOf(BallPress::SelectToggle));
    section.rows.append({{QStringLiteral("right button, on a small ball")}, QStringLiteral("take it out")});
    return section;
}

} // namespace

QList<HelpSection> pressHelp()
{
    const auto row = [](const char* press, const char* effect) {
        return HelpSection::Row{{QString::fromLatin1(press)}, QString::fromLatin1(effect)};
    };
    return {ballHelp(),
            {QStringLiteral("A card"),
             {row("double click, right button, Ctrl+press", "end its note"),
              row("Shift+press", "transpose: this pitch becomes the centre"),
              row("pointer over it", "it comes to the front, as does the card of a large ball")}},
            {QStringLiteral("Lattice"),
             {row("Ctrl+wheel, two fingers", "zoom, if the options allow it"),
              row("drag the ground, wheel", "move the enlarged lattice")}},
            {QStringLiteral("Column of primes"),
             {row("number", "switch the prime off or on: its balls go and come"),
              row("arrows", "transpose by the prime"), row("=", "back to no transposition")}},
            {QStringLiteral("Harmony panel"),
             {row("pointer over it", "all of a text that is cut, and each interval in words")}}};
}
