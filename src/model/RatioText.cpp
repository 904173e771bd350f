#include "model/RatioText.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "model/OctaveReduction.h"

QString ratioText(RatioFraction fraction)
{
    const Settings* settings = app::settings();
    if (!settings || settings->ratiosWithinOctave)
        fraction = withinOctave(fraction);
    return QString::number(fraction.first) + u'/' + QString::number(fraction.second);
}
