#include "memory/ChordLine.h"

#include <QDebug>
#include <QStringList>

#include <algorithm>

namespace chordline {

namespace {

const QString TERMINATOR = QStringLiteral("0");

unsigned long long asUnsigned(int number)
{
    return static_cast<unsigned long long>(number);
}

bool isBlank(const QStringList& parts, qsizetype from)
{
    return std::all_of(parts.begin() + from, parts.end(),
                       [](const QString& part) { return part.trimmed().isEmpty(); });
}

} // namespace

bool isEmptySlot(const QString& line)
{
    return line.startsWith(TERMINATOR);
}

bool holdsMoreThanAnEmptySlot(const QString& line)
{
    return line.trimmed() != TERMINATOR;
}

QList<OrloRatio> read(const QString& line, int slot, Reading& reading)
{
    QList<OrloRatio> chord;
    const QStringList parts = line.split(u' ');
    for (qsizetype at = 0; at < parts.size(); ++at) {
        const QString& part = parts[at];
        if (part == TERMINATOR) {
            qDebug() << "Reached end of line.";
            reading.lost = reading.lost || !isBlank(parts, at + 1);
            break;
        }
        const QStringList pieces = part.split(u'/');
        int numbers[2]{};
        for (qsizetype i = 0; pieces.size() == 2 && i < 2; ++i) {
            numbers[i] = pieces[i].toInt(&reading.ok); // both into one flag: the second decides
            reading.lost = reading.lost || !reading.ok || numbers[i] <= 0; // a zero is no pitch
        }
        if (pieces.size() != 2 || !reading.ok) {
            reading.ok = false;
            reading.lost = reading.lost || !isBlank(parts, at);
            reading.error = QStringLiteral("Wrong format in line ") + QChar(slot); // a character of that code
            break;
        }
        try {
            chord.append(OrloRatio(asUnsigned(numbers[0]), asUnsigned(numbers[1])));
        } catch (const boost::bad_rational&) {
            reading.lost = true;
            reading.noRatios.append({slot, part});
            break;
        }
    }
    return chord;
}

QString write(const QList<OrloRatio>& chord)
{
    QString text;
    for (const OrloRatio& ratio : chord)
        text += QString::number(ratio.numerator()) + u'/' + QString::number(ratio.denominator()) + u' ';
    return text + TERMINATOR + u'\n';
}

} // namespace chordline
