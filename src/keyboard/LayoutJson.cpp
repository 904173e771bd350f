#include "keyboard/LayoutJson.h"

#include <QJsonArray>

#include <cmath>
#include <type_traits>

namespace {

constexpr int LONGEST = 60; // characters of a foreign text in a complaint
constexpr int MAX_MIDI_KEY = Layout::KEYS - 1;

// In the order of the enumerations.
const QStringList KINDS{QStringLiteral("learned"),    QStringLiteral("twelve"),
                        QStringLiteral("generators"), QStringLiteral("scala"),
                        QStringLiteral("harmonics"),  QStringLiteral("subharmonics")};
const QStringList ROWS{QStringLiteral("keys"), QStringLiteral("channels")};
const QStringList BEYOND_31{QStringLiteral("skipped"), QStringLiteral("silent")};

/// Writes each member under its name.
class Writer
{
public:
    template <class Number>
    void number(const QString& name, Number& value, Number, Number)
    {
        mJson.insert(name, value);
    }
    void truth(const QString& name, bool& value) { mJson.insert(name, value); }
    void text(const QString& name, QString& value) { mJson.insert(name, value); }
    void path(const QString& name, OrloPathUnlimited& value) { mJson.insert(name, value.parseToString()); }
    template <class Value>
    void choice(const QString& name, Value& value, const QStringList& names)
    {
        mJson.insert(name, names.value(static_cast<int>(value)));
    }

    QJsonObject json() const { return mJson; }

private:
    QJsonObject mJson;
};

/// Reads each member by its name. What is missing keeps its value. The last one that is wrong is the
/// complaint.
class Reader
{
public:
    explicit Reader(const QJsonObject& json)
        : mJson(json)
    {
    }

    template <class Number>
    void number(const QString& name, Number& value, Number lowest, Number highest)
    {
        const double found = mJson.value(name).toDouble(NAN);
        if (found >= lowest && found <= highest
            && (!std::is_integral_v<Number> || found == std::floor(found)))
            value = static_cast<Number>(found);
        else if (mJson.contains(name))
            complain(QStringLiteral("%1 is not from %2 to %3").arg(name).arg(lowest).arg(highest));
    }
    void truth(const QString& name, bool& value)
    {
        if (mJson.contains(name) && !mJson.value(name).isBool())
            complain(QStringLiteral("%1 is neither true nor false").arg(name));
        value = mJson.value(name).toBool(value);
    }
    void text(const QString& name, QString& value)
    {
        if (mJson.contains(name) && !mJson.value(name).isString())
            complain(QStringLiteral("%1 is not a text").arg(name));
        value = mJson.value(name).toString(value);
    }
    void path(const QString& name, OrloPathUnlimited& value)
    {
        QString found = value.parseToString();
        text(name, found);
        value = OrloPathUnlimited(found);
        if (!value.isValid() || value.parseToString() != found)
            complain(QStringLiteral("%1 is not a path").arg(name));
    }
    template <class Value>
    void choice(const QString& name, Value& value, const QStringList& names)
    {
        QString found = names.value(static_cast<int>(value));
        text(name, found);
        const qsizetype index = names.indexOf(found);
        if (index < 0)
            complain(QStringLiteral("%1 is not known: %2").arg(name, found.left(LONGEST)));
        else
            value = static_cast<Value>(index);
    }
    QJsonArray list(const QString& name)
    {
        if (mJson.contains(name) && !mJson.value(name).isArray())
            complain(QStringLiteral("%1 is not a list").arg(name));
        return mJson.value(name).toArray();
    }

    void complain(const QString& text) { mComplaint = text; }
    const QString& complaint() const { return mComplaint; }

private:
    QJsonObject mJson;
    QString mComplaint;
};

template <class Archive>
void exchangeKind(Archive& archive, Layout& layout)
{
    switch (layout.kind) {
    case Layout::Kind::Learned:
    case Layout::Kind::Scala: return; // lists, and of a keyboard its own object
    case Layout::Kind::Twelve:
        archive.number(QStringLiteral("primeLimit"), layout.twelve.primeLimit, 2,
                       OrloConstants::HIGHEST_PRIME);
        archive.number(QStringLiteral("window"), layout.twelve.window, 0.0, Layout::Twelve::MAX_WINDOW);
        return;
    case Layout::Kind::Generators:
        archive.path(QStringLiteral("along"), layout.generators.along);
        archive.path(QStringLiteral("across"), layout.generators.across);
        archive.choice(QStringLiteral("rows"), layout.generators.rows, ROWS);
        archive.number(QStringLiteral("rowLength"), layout.generators.rowLength, 1,
                       Layout::Generators::MAX_ROW_LENGTH);
        archive.number(QStringLiteral("rootChannel"), layout.generators.rootChannel, 1, Layout::CHANNELS);
        return;
    case Layout::Kind::Harmonics:
    case Layout::Kind::Subharmonics:
        archive.number(QStringLiteral("first"), layout.harmonics.first, 1, Layout::Harmonics::MAX_FIRST);
        archive.number(QStringLiteral("octaves"), layout.harmonics.octaves, 0,
                       Layout::Harmonics::MAX_OCTAVES);
        archive.choice(QStringLiteral("beyond31"), layout.harmonics.beyond31, BEYOND_31);
        return;
    }
}

template <class Archive>
void exchange(Archive& archive, Layout& layout)
{
    archive.text(QStringLiteral("name"), layout.name);
    archive.truth(QStringLiteral("enabled"), layout.enabled);
    archive.number(QStringLiteral("firstChannel"), layout.firstChannel, 1, Layout::CHANNELS);
    archive.number(QStringLiteral("lastChannel"), layout.lastChannel, 1, Layout::CHANNELS);
    archive.choice(QStringLiteral("kind"), layout.kind, KINDS);
    archive.number(QStringLiteral("rootKey"), layout.rootKey, 0, MAX_MIDI_KEY);
    exchangeKind(archive, layout);
}

template <class Archive>
void exchange(Archive& archive, ScalaKeyboard& keyboard)
{
    constexpr int most = ScalaKeyboard::MAX_NUMBER;
    archive.number(QStringLiteral("first"), keyboard.first, -most, most);
    archive.number(QStringLiteral("last"), keyboard.last, -most, most);
    archive.number(QStringLiteral("middle"), keyboard.middle, -most, most);
    archive.number(QStringLiteral("referenceKey"), keyboard.referenceKey, -most, most);
    archive.number(QStringLiteral("referenceFrequency"), keyboard.referenceFrequency, 0.0,
                   ScalaKeyboard::MAX_FREQUENCY);
    archive.number(QStringLiteral("octaveDegree"), keyboard.octaveDegree, -most, most);
}

QJsonArray writtenKeys(const Layout& layout)
{
    QJsonArray keys;
    for (auto it = layout.learned.keys.begin(); it != layout.learned.keys.end(); ++it)
        keys.append(QJsonObject{{QStringLiteral("channel"), it.key().first},
                                {QStringLiteral("key"), it.key().second},
                                {QStringLiteral("ratio"), ScalaPitch::of(it.value()).toText()}});
    return keys;
}

QJsonObject writtenScale(const ScalaScale& scale)
{
    QJsonArray pitches;
    for (const ScalaPitch& pitch : scale.pitches())
        pitches.append(pitch.toText());
    return {{QStringLiteral("description"), scale.description()}, {QStringLiteral("pitches"), pitches}};
}

QJsonObject writtenKeyboard(ScalaKeyboard keyboard)
{
    Writer writer;
    exchange(writer, keyboard);
    QJsonArray degrees;
    for (const std::optional<int>& degree : keyboard.degrees)
        degrees.append(degree ? QJsonValue(*degree) : QJsonValue());
    QJsonObject json = writer.json();
    json.insert(QStringLiteral("degrees"), degrees);
    return json;
}

std::optional<ScalaPitch> pitchFrom(const QJsonValue& json)
{
    QString reason;
    return ScalaPitch::fromText(json.toString().toUtf8(), reason);
}

void readKeys(Reader& reader, Layout& layout, QStringList& complaints)
{
    int wrong = 0;
    for (const QJsonValue& json : reader.list(QStringLiteral("keys"))) {
        int channel = Layout::Learned::ANY_CHANNEL;
        int key = -1;
        Reader entry(json.toObject());
        entry.number(QStringLiteral("channel"), channel, Layout::Learned::ANY_CHANNEL, Layout::CHANNELS);
        entry.number(QStringLiteral("key"), key, 0, MAX_MIDI_KEY);
        const std::optional<ScalaPitch> pitch = pitchFrom(json[QStringLiteral("ratio")]);
        if (entry.complaint().isEmpty() && key >= 0 && pitch && pitch->isExact())
            layout.learned.keys.insert({channel, key}, pitch->ratio);
        else
            ++wrong;
    }
    if (wrong > 0)
        complaints.append(
            QStringLiteral("%1 keys of the layout \"%2\"").arg(wrong).arg(layout.name.left(LONGEST)));
}

void readScale(Reader& reader, ScalaScale& scale)
{
    QString description;
    reader.text(QStringLiteral("description"), description);
    QList<ScalaPitch> pitches;
    for (const QJsonValue& json : reader.list(QStringLiteral("pitches"))) {
        const std::optional<ScalaPitch> pitch = pitchFrom(json);
        pitches.append(pitch.value_or(ScalaPitch()));
        if (!pitch)
            reader.complain(QStringLiteral("pitch %1 is wrong").arg(pitches.size()));
    }
    if (pitches.size() > ScalaScale::MAX_PITCHES)
        reader.complain(QStringLiteral("there are too many pitches"));
    scale = ScalaScale(description, pitches);
}

void readKeyboard(Reader& reader, ScalaKeyboard& keyboard)
{
    exchange(reader, keyboard);
    for (const QJsonValue& json : reader.list(QStringLiteral("degrees"))) {
        std::optional<int> degree;
        if (!json.isNull()) {
            int number = 0;
            Reader entry({{QStringLiteral("degree"), json}});
            entry.number(QStringLiteral("degree"), number, -ScalaKeyboard::MAX_NUMBER,
                         ScalaKeyboard::MAX_NUMBER);
            degree = number;
            if (!entry.complaint().isEmpty())
                reader.complain(entry.complaint());
        }
        keyboard.degrees.append(degree);
    }
    if (keyboard.degrees.size() > ScalaKeyboard::MAX_SIZE)
        reader.complain(QStringLiteral("there are too many degrees"));
}

/// Reads the object of that name, when there is one.
template <class Value>
void readPart(Reader& reader, const QJsonValue& json, void (*read)(Reader&, Value&), Value& value)
{
    Reader part(json.toObject());
    read(part, value);
    if (!json.isObject())
        part.complain(QStringLiteral("scale or keyboard is wrong"));
    if (!part.complaint().isEmpty())
        reader.complain(part.complaint());
}

} // namespace

QJsonObject layoutjson::write(const Layout& layout)
{
    Writer writer;
    Layout copy = layout;
    exchange(writer, copy);
    QJsonObject json = writer.json();
    if (!layout.inputs.isEmpty())
        json.insert(QStringLiteral("inputs"), QJsonArray::fromStringList(layout.inputs));
    if (layout.kind == Layout::Kind::Learned)
        json.insert(QStringLiteral("keys"), writtenKeys(layout));
    if (layout.kind != Layout::Kind::Scala)
        return json;
    json.insert(QStringLiteral("scale"), writtenScale(layout.scala.scale));
    if (layout.scala.keyboard)
        json.insert(QStringLiteral("keyboard"), writtenKeyboard(*layout.scala.keyboard));
    return json;
}

std::optional<Layout> layoutjson::read(const QJsonObject& json, QStringList& complaints)
{
    Layout layout;
    Reader reader(json);
    exchange(reader, layout);
    for (const QJsonValue& input : reader.list(QStringLiteral("inputs"))) {
        layout.inputs.append(input.toString());
        if (!input.isString())
            reader.complain(QStringLiteral("inputs are texts"));
    }
    if (!OrloConstants::isValidPrime(layout.twelve.primeLimit))
        reader.complain(QStringLiteral("primeLimit is no prime"));
    if (layout.kind == Layout::Kind::Learned)
        readKeys(reader, layout, complaints);
    if (layout.kind == Layout::Kind::Scala)
        readPart(reader, json.value(QStringLiteral("scale")), readScale, layout.scala.scale);
    if (const QJsonValue keyboard = json.value(QStringLiteral("keyboard"));
        layout.kind == Layout::Kind::Scala && !keyboard.isUndefined())
        readPart(reader, keyboard, readKeyboard, layout.scala.keyboard.emplace());
    if (reader.complaint().isEmpty())
        return layout;
    complaints.append(
        QStringLiteral("the layout \"%1\": %2").arg(layout.name.left(LONGEST), reader.complaint()));
    return std::nullopt;
}
