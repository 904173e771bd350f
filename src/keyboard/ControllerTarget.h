#pragma once

#include <QList>
#include <QString>

/// What a MIDI controller does: it moves a slider of the panel, or presses one of its buttons.
struct ControllerTarget
{
    enum Kind {
        None,
        Macro, // 1 to 8
        Volume,
        Glissando,
        FineGlissando,
        TransposeUp,   // a prime from 2 to 31
        TransposeDown, // likewise
        Chord,         // 1 to 20
        PatchUp,
        PatchDown,
    };

    Kind kind = None;
    int number = 0; // of those that are counted, else 0

    bool operator==(const ControllerTarget&) const = default;

    bool isNone() const { return kind == None; }
    /// Otherwise it is a button, which a value of 64 or more presses.
    bool isSlider() const { return kind >= Macro && kind <= FineGlissando; }
    /// The middle of the controller is the middle of the slider.
    bool isCentred() const { return kind == Glissando || kind == FineGlissando; }
    /// As the player reads it: "Master volume", "Transpose up by 3".
    QString title() const;
    /// As a file keeps it: "volume", "up3".
    QString id() const;

    /// None for a text that is no id.
    static ControllerTarget fromId(const QString& id);
    /// In the order in which they are offered.
    static const QList<ControllerTarget>& all();
};
