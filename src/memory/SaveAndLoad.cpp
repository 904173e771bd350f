#include "memory/SaveAndLoad.h"

#include "memory/ChordFileError.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace {

const QString TERMINATOR = QStringLiteral("0");

unsigned long long asUnsigned(int number)
{
    return static_cast<unsigned long long>(number);
}

} // namespace

/// What becomes of a file while it is read.
struct SaveAndLoad::Reading
{
    bool ok = true; // of the last number that was read
    QString error;
    QList<ChordFileError::Part> noRatios;
};

bool SaveAndLoad::getDataFromFile(QDir* file, Chords* chords, int maxSets)
{
    QFile source(file->path());
    if (!source.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "Could not open file: " << file->path();
        return false;
    }
    qDebug() << "Reading from file: " << file->path();
    chords->clear();
    Reading reading;
    QTextStream stream(&source);
    readLines(stream, *chords, maxSets, reading);
    if (!reading.ok) {
        chords->clear();
        qDebug().noquote() << "Error while opening file. " << reading.error;
        qWarning().noquote() << "Error while opening file. " << reading.error;
    }
    if (!reading.noRatios.isEmpty())
        throw ChordFileError(reading.noRatios);
    return reading.ok;
}

void SaveAndLoad::readLines(QTextStream& stream, Chords& chords, int maxSets, Reading& reading)
{
    int slot = 0;
    while (!stream.atEnd()) {
        const QString text = stream.readLine();
        qDebug() << "Reading line " << slot << ": " << text;
        if (maxSets <= slot) {
            qDebug() << "More chord sets than can be allocated. Discarding sets with index > " << slot;
            break;
        }
        ++slot;
        if (!text.startsWith(TERMINATOR))
            chords.insert(slot, readChord(text.split(u' '), slot, reading));
    }
}

QList<OrloRatio> SaveAndLoad::readChord(const QStringList& parts, int slot, Reading& reading)
{
    QList<OrloRatio> chord;
    for (const QString& part : parts) {
        if (part == TERMINATOR) {
            qDebug() << "Reached end of line.";
            break;
        }
        const QStringList pieces = part.split(u'/');
        int numbers[2]{};
        for (qsizetype i = 0; pieces.size() == 2 && i < 2; ++i)
            numbers[i] = pieces[i].toInt(&reading.ok); // both into one flag: the second decides
        if (pieces.size() != 2 || !reading.ok) {
            reading.ok = false;
            reading.error = QStringLiteral("Wrong format in line ") + QChar(slot); // a character of that code
            break;
        }
        try {
            chord.append(OrloRatio(asUnsigned(numbers[0]), asUnsigned(numbers[1])));
        } catch (const boost::bad_rational&) {
            reading.noRatios.append({slot, part});
            break;
        }
    }
    return chord;
}

QString SaveAndLoad::line(const QList<OrloRatio>& chord)
{
    QString text;
    for (const OrloRatio& ratio : chord)
        text += QString::number(ratio.numerator()) + u'/' + QString::number(ratio.denominator()) + u' ';
    return text + TERMINATOR + u'\n';
}

bool SaveAndLoad::saveDataToFile(QDir* file, Chords* chords, int sets)
{
    QSaveFile target(file->path());
    target.setDirectWriteFallback(true); // for a folder that takes no new file beside the old one
    if (!target.open(QIODevice::WriteOnly | QIODevice::Text)) {
        qDebug() << "Could not open file: " << file->path();
        return false;
    }
    qDebug() << "Writing to file: " << file->path();
    for (int slot = 1; slot < sets; ++slot) {
        const QList<OrloRatio> chord = chords->value(slot);
        if (chord.isEmpty())
            qDebug() << "Writing empty set in line " << slot;
        target.write(line(chord).toLatin1());
    }
    if (!target.commit()) {
        qCritical().noquote() << QStringLiteral("Couldn't write file %1: %2. The old one is kept.")
                                     .arg(file->path(), target.errorString());
        return false;
    }
    return true;
}
