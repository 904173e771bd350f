#pragma once

#include "model/OrloRatio.h"

#include <QHash>
#include <QList>
#include <QObject>

class QDir;
class QTextStream;

namespace chordline {
struct Reading;
}

/// Chord files, ".btoc": reads and writes the table of slots that StoreAndRecall holds in memory. One line
/// (ChordLine) for each slot from 1 on. The same format serves presets and the chords of the running
/// program. Graphical thread.
///
/// The QDir carries the path of the file itself.
class SaveAndLoad : public QObject
{
    Q_OBJECT

public:
    using Chords = QHash<int, QList<OrloRatio>>;

    /// Replaces the table by the file's lines, at most `maxSets` of them. False when the file
    /// cannot be read, which leaves the table as it is, or when it ends with a wrong ratio, which
    /// leaves it empty.
    ///
    /// The reading is lenient in ways that files depend on: a wrong ratio cuts its line short and
    /// is forgiven when a later number is good, and a numerator that is no number counts as 0.
    ///
    /// A file of which something is lost in reading is marked to be set aside.
    ///
    /// Throws ChordFileError, which is a boost::bad_rational, for ratios such as "3/0". Each cuts its line
    /// short; all other lines are in the table then, unless the file also ends with a wrong ratio, which
    /// leaves it empty.
    bool getDataFromFile(QDir* file, Chords* chords, int maxSets);

    /// Writes slots 1 to `sets` - 1. The file is replaced only when the new one is complete on
    /// disk. False when it cannot be written.
    bool saveDataToFile(QDir* file, Chords* chords, int sets);
    /// What it writes.
    static QByteArray text(const Chords& chords, int sets);

signals:
    /// The whole file is on the disk.
    void written(const QString& path);

private:
    static void readLines(QTextStream& stream, Chords& chords, int maxSets, chordline::Reading& reading);
};
