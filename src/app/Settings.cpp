#include "app/Settings.h"

#include <QDir>
#include <QStandardPaths>

#include <limits>

namespace {

template <class T>
void store(T& field, const T& value)
{
    if (field != value)
        field = value;
}

/// A JSON number without its fraction; the nearest int when it is out of range.
int cutToInt(double value)
{
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(qBound(lowest, value, highest));
}

/// Reads the first two parts of "%1,%2"; a part that is not an integer gives 0. False, with nothing
/// changed, for fewer parts.
bool readPair(const QJsonValue& value, int& first, int& second)
{
    if (!value.isString())
        return false;
    const QStringList parts = value.toString().split(u',');
    if (parts.size() < 2)
        return false;
    first = parts[0].toInt();
    second = parts[1].toInt();
    return true;
}

QString pairText(int first, int second)
{
    return QStringLiteral("%1,%2").arg(first).arg(second);
}

/// Gives a field the value of its key, but only when the JSON type is the right one.
struct Reader
{
    const QJsonObject& json;

    QJsonValue at(const char* key) const { return json.value(QLatin1StringView(key)); }

    void operator()(const char* key, int& field) const
    {
        if (const QJsonValue value = at(key); value.isDouble())
            field = cutToInt(value.toDouble());
    }
    void operator()(const char* key, float& field) const
    {
        if (const QJsonValue value = at(key); value.isDouble())
            field = static_cast<float>(value.toDouble());
    }
    void operator()(const char* key, double& field) const
    {
        if (const QJsonValue value = at(key); value.isDouble())
            field = value.toDouble();
    }
    void operator()(const char* key, bool& field) const
    {
        if (const QJsonValue value = at(key); value.isBool())
            field = value.toBool();
    }
    void operator()(const char* key, QString& field) const
    {
        if (const QJsonValue value = at(key); value.isString())
            field = value.toString();
    }
    template <class T>
    void operator()(const char* key, SharedOption<T>& field) const
    {
        T value = field;
        (*this)(key, value);
        field = value;
    }
    void operator()(const char* key, QSize& field) const
    {
        readPair(at(key), field.rwidth(), field.rheight());
    }
    void operator()(const char* key, QPoint& field) const { readPair(at(key), field.rx(), field.ry()); }
};

struct Writer
{
    QJsonObject& json;

    template <class T>
    void operator()(const char* key, const T& field) const
    {
        json.insert(QLatin1StringView(key), QJsonValue(field));
    }
    template <class T>
    void operator()(const char* key, const SharedOption<T>& field) const
    {
        (*this)(key, static_cast<T>(field));
    }
    void operator()(const char* key, const float& field) const { (*this)(key, static_cast<double>(field)); }
    void operator()(const char* key, const QSize& field) const
    {
        (*this)(key, pairText(field.width(), field.height()));
    }
    void operator()(const char* key, const QPoint& field) const
    {
        (*this)(key, pairText(field.x(), field.y()));
    }
};

} // namespace

template <class Self, class Visitor>
void Settings::forEachField(Self& self, Visitor&& visitor)
{
    visitor("audioDevice", self.audioDevice);
    visitor("framesPerBuffer", self.framesPerBuffer);
    visitor("midiOutDevice", self.midiOutDevice);
    visitor("midiOutChannel", self.midiOutChannel);
    visitor("midiOutMpeZone", self.midiOutMpeZone);
    visitor("baseFrequency", self.baseFrequency);
    visitor("calibrationFrequency", self.calibrationFrequency);
    visitor("baseNote", self.baseNote);
    visitor("baseNoteFreqRatio", self.baseNoteFreqRatio);
    visitor("masterVolume", self.masterVolume);
    visitor("monophonic", self.monophonic);
    visitor("defaultPatch", self.defaultPatch);
    visitor("softNodeReset", self.softNodeReset);
    visitor("circlesView", self.circlesView);
    visitor("absRelView", self.absRelView);
    visitor("udpPort", self.udpPort);
    visitor("windowSize", self.windowSize);
    visitor("windowPos", self.windowPos);
    visitor("windowMaximized", self.windowMaximized);
    visitor("orloZoomMode", self.orloZoomMode);
    visitor("updateCheckInterval", self.updateCheckInterval);
    visitor("tSysLastUpdateCheck", self.tSysLastUpdateCheck);
    visitor("ratiosWithinOctave", self.ratiosWithinOctave);
    visitor("centralNodeColourRelativeMode", self.centralNodeColourRelativeMode);
    visitor("soundGrapeNotation", self.soundGrapeNotation);
    visitor("helmholtzEllis", self.helmholtzEllis);
    visitor("harmonyPanel", self.harmonyPanel);
    visitor("harmonyPanelFloats", self.harmonyPanelFloats);
    visitor("oneOneMenuSplitOctaves", self.oneOneMenuSplitOctaves);
    visitor("lastBrowsedPatchPath", self.lastBrowsedPatchPath);
    visitor("lastDirPath", self.lastDirPath);
    visitor("glissOneRangeCents", self.glissOneRangeCents);
    visitor("glissTwoRangeCents", self.glissTwoRangeCents);
    visitor("glissRangeMPECents", self.glissRangeMPECents);
    visitor("maintainMacroParameters", self.maintainMacroParameters);
    visitor("centsShowDecimals", self.centsShowDecimals);
    visitor("mainPatchNumberOfVoices", self.mainPatchNumberOfVoices);
}

Settings::Settings()
    : SerializableRoot(nullptr)
    , lastBrowsedPatchPath(QDir::homePath())
    , lastDirPath(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                  + QStringLiteral("/chord_presets"))
{
}

bool Settings::init()
{
    const bool hidden = mHidden.init();
    const bool visible = SerializableRoot::init(QStringLiteral("options.json"));
    return hidden && visible;
}

void Settings::read(const QJsonObject& json)
{
    forEachField(*this, Reader{json});
    mHidden.load();
}

void Settings::write(QJsonObject& json) const
{
    forEachField(*this, Writer{json});
    mHidden.save();
}

void Settings::onAudioDeviceChanged(int device)
{
    store(audioDevice, device);
}

void Settings::onFramesPerBufferChanged(int frames)
{
    store(framesPerBuffer, frames);
}

void Settings::onBaseFrequencyChanged(float frequency)
{
    store(baseFrequency, static_cast<double>(frequency));
}

void Settings::onCalibrationFrequencyChanged(int frequency)
{
    store(calibrationFrequency, static_cast<double>(frequency));
}

void Settings::onBaseNoteChanged(QString note)
{
    store(baseNote, note);
}

void Settings::onMasterVolumeChanged(float volume)
{
    store(masterVolume, volume);
}

void Settings::onMonophonicChanged(bool on)
{
    store(monophonic, on);
}
