#include "memory/SaveAndLoad.h"

#include "memory/ChordFileError.h"
#include "memory/ChordLine.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

bool SaveAndLoad::getDataFromFile(QDir* file, Chords* chords, int maxSets)
{
    QFile source(file->path());
    if (!source.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "Could not open file: " << file->path();
        return false;
    }
    qDebug() << "Reading from file: " << file->path();
    chords->clear();
    chordline::Reading reading;
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

void SaveAndLoad::readLines(QTextStream& stream, Chords& chords, int maxSets, chordline::Reading& reading)
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
        if (!chordline::isEmptySlot(text))
            chords.insert(slot, chordline::read(text, slot, reading));
    }
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
        target.write(chordline::write(chord).toLatin1());
    }
    if (!target.commit()) {
        qCritical().noquote() << QStringLiteral("Couldn't write file %1: %2. The old one is kept.")
                                     .arg(file->path(), target.errorString());
        return false;
    }
    return true;
}
