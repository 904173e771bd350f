#include "keyboard/LayoutFile.h"

#include "app/LogText.h"
#include "files/SetAside.h"
#include "keyboard/LayoutJson.h"

#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

constexpr qint64 MAX_BYTES = qint64{64} << 20U;

const QString LAYOUTS = QStringLiteral("layouts");

LayoutFile::Reading refused(const QString& complaint)
{
    return {.complaints = {complaint}};
}

LayoutFile::Reading fromFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refused(file.errorString());
    const QByteArray text = file.read(MAX_BYTES);
    if (!file.atEnd())
        return refused(QStringLiteral("it is longer than %1 MiB").arg(MAX_BYTES >> 20U));
    return LayoutFile::fromText(text);
}

} // namespace

LayoutFile::Reading LayoutFile::read(const QString& path)
{
    if (!QFile::exists(path))
        return {};
    Reading reading = fromFile(path);
    for (const QString& complaint : reading.complaints)
        qWarning().noquote()
            << QStringLiteral("In %1, something is left out: %2.").arg(path, logText(complaint));
    if (!reading.complaints.isEmpty())
        SetAside::mark(path);
    return reading;
}

LayoutFile::Reading LayoutFile::fromText(const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    const QJsonValue layouts = document.object().value(LAYOUTS);
    if (document.isNull())
        return refused(error.errorString());
    if (!layouts.isArray())
        return refused(QStringLiteral("there is no list of layouts"));
    Reading reading;
    const QJsonArray list = layouts.toArray();
    for (qsizetype i = 0; i < qMin<qsizetype>(list.size(), MAX_LAYOUTS); ++i) {
        if (!list[i].isObject())
            reading.complaints.append(QStringLiteral("layout %1, which is none").arg(i + 1));
        else if (const auto layout = layoutjson::read(list[i].toObject(), reading.complaints))
            reading.layouts.append(*layout);
    }
    if (list.size() > MAX_LAYOUTS)
        reading.complaints.append(QStringLiteral("all layouts beyond the first %1").arg(MAX_LAYOUTS));
    return reading;
}

QByteArray LayoutFile::text(const QList<Layout>& layouts)
{
    QJsonArray list;
    for (const Layout& layout : layouts)
        list.append(layoutjson::write(layout));
    return QJsonDocument(QJsonObject{{LAYOUTS, list}}).toJson(QJsonDocument::Indented);
}
