#include "memory/SaveAndLoad.h"

#include "files/SetAside.h"
#include "files/WholeFile.h"
#include "memory/ChordFileError.h"
#include "memory/ChordLine.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QTextStream>

bool SaveAndLoad::getDataFromFile(QDir* file, Chords* chords, int maxSets)
{
    QFile source(file->path());
    if (!source.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "Could not open file: " << file->path();
        if (source.exists())
            SetAside::mark(file->path());
        return false;
    }
    qDebug() << "Reading from file: " << file->path();
    chords->clear();
    chordline::Reading reading;
    QTextStream stream(&source);
    readLines(stream, *chords, maxSets, reading);
    if (reading.lost || !reading.ok || source.error() != QFileDevice::NoError)
        SetAside::mark(file->path());
    if (!reading.ok) {
        chords->clear();
        qDebug().noquote() << "Error while opening file. " << reading.error;
        qWarning().noquote() << "Error while opening file. " << reading.error;
    }
    if (!reading.noRatios.isEmpty())
        throw ChordFileError(reading.noRatios);
    return reading.ok;
}

void SaveAndLoad::readLines(QTextStream& stream, Chords& chords, int maxSets, chordline::Reading& reading)
{
    int slot = 0;
    while (!stream.atEnd()) {
        const QString text = stream.readLine();
        qDebug() << "Reading line " << slot << ": " << text;
        if (maxSets <= slot) {
            qDebug() << "More chord sets than can be allocated. Discarding sets with index > " << slot;
            reading.lost = true;
            break;
        }
        ++slot;
        if (!chordline::isEmptySlot(text))
            chords.insert(slot, chordline::read(text, slot, reading));
        else if (chordline::holdsMoreThanAnEmptySlot(text))
            reading.lost = true;
    }
    if (chords.contains(maxSets)) // a slot that is read and never written
        reading.lost = true;
}

QByteArray SaveAndLoad::text(const Chords& chords, int sets)
{
    QByteArray text;
    for (int slot = 1; slot < sets; ++slot)
        text += chordline::write(chords.value(slot)).toLatin1();
    return text;
}

bool SaveAndLoad::saveDataToFile(QDir* file, Chords* chords, int sets)
{
    const WholeFile::Outcome outcome = WholeFile::write(file->path(), text(*chords, sets));
    if (outcome.step == WholeFile::Outcome::NotOpened) {
        qDebug() << "Could not open file: " << file->path();
    } else {
        qDebug() << "Writing to file: " << file->path();
        for (int slot = 1; slot < sets; ++slot) {
            if (chords->value(slot).isEmpty())
                qDebug() << "Writing empty set in line " << slot;
        }
    }
    if (outcome)
        emit written(file->path());
    else
        qCritical().noquote() << QStringLiteral("Couldn't write file %1: %2. The old one is kept.")
                                     .arg(file->path(), outcome.reason);
    return static_cast<bool>(outcome);
}
