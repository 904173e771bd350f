#include "tuning/PureDataTable.h"

namespace puredatatable {
namespace {

constexpr int KEYS = 128;
constexpr double HIGHEST = 1e6;   // Hz
constexpr qsizetype VALUES = 100; // of one message, far fewer than fit in one

QByteArray array(const QByteArray& place, const QByteArray& name, const QList<double>& hertz)
{
    constexpr int digits = 9; // of single precision
    QByteArray text =
        "#X obj " + place + " array define -k " + name + ' ' + QByteArray::number(hertz.size()) + ";\n";
    for (qsizetype i = 0; i < hertz.size(); ++i) {
        if (i % VALUES == 0)
            text += "#A " + QByteArray::number(i);
        text += ' ' + QByteArray::number(hertz[i], 'g', digits);
        if ((i + 1) % VALUES == 0 || i + 1 == hertz.size())
            text += ";\n";
    }
    return text;
}

QByteArray comment(const QByteArray& place, QByteArray text)
{
    for (const char special : {',', ';', '\\', '$', '{', '}'})
        text.replace(special, ' ');
    return "#X text " + place + ' ' + text.simplified() + ";\n";
}

} // namespace

QByteArray write(const TuningScale& scale)
{
    QList<double> pitches;
    QByteArray ratios;
    for (const TuningScale::Pitch& pitch : scale.pitches) {
        pitches.append(pitch.hertz);
        ratios += ' ' + wideratio::text(pitch.ratio).toLatin1() + " \\;\n";
    }
    QList<double> keys;
    for (int key = 0; key < KEYS; ++key) {
        const double hertz = scale.hertzOfKey(key);
        keys.append(hertz < HIGHEST ? hertz : 0.0);
    }
    return "#N canvas 100 100 560 260 12;\n" + comment("20 15", scale.title)
           + comment("20 40", scale.rootText()) + comment("220 80", "Hz of each pitch")
           + comment("220 120", "Hz of each MIDI key") + comment("220 160", "the exact ratios")
           + array("20 80", "orlo-pitches", pitches) + array("20 120", "orlo-keys", keys)
           + "#X obj 20 160 text define -k orlo-ratios;\n#A set" + ratios + ";\n";
}

} // namespace puredatatable
