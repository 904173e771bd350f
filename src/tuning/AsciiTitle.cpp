#include "tuning/AsciiTitle.h"

#include <QList>

#include <array>

namespace asciititle {
namespace {

struct Spelling
{
    char32_t letter;
    const char* ascii;
};

/// What has no decomposition of its own, and stands in titles of music.
constexpr std::array SPELLINGS = {
    Spelling{U'\u00c6', "AE"}, Spelling{U'\u00d0', "D"},  Spelling{U'\u00d7', "x"},
    Spelling{U'\u00d8', "O"},  Spelling{U'\u00de', "Th"}, Spelling{U'\u00df', "ss"},
    Spelling{U'\u00e6', "ae"}, Spelling{U'\u00f0', "d"},  Spelling{U'\u00f7', ":"},
    Spelling{U'\u00f8', "o"},  Spelling{U'\u00fe', "th"}, Spelling{U'\u0110', "D"},
    Spelling{U'\u0111', "d"},  Spelling{U'\u0131', "i"},  Spelling{U'\u0141', "L"},
    Spelling{U'\u0142', "l"},  Spelling{U'\u0152', "OE"}, Spelling{U'\u0153', "oe"},
    Spelling{U'\u2010', "-"},  Spelling{U'\u2013', "-"},  Spelling{U'\u2014', "-"},
    Spelling{U'\u2018', "'"},  Spelling{U'\u2019', "'"},  Spelling{U'\u201c', "\""},
    Spelling{U'\u201d', "\""}, Spelling{U'\u2044', "/"},  Spelling{U'\u2212', "-"},
    Spelling{U'\u266d', "b"},  Spelling{U'\u266e', ""},   Spelling{U'\u266f', "#"},
};

QByteArray spelled(char32_t letter)
{
    if (letter < U'\x7f')
        return letter > U' ' ? QByteArray(1, static_cast<char>(letter)) : QByteArrayLiteral(" ");
    for (const Spelling& spelling : SPELLINGS) {
        if (spelling.letter == letter)
            return spelling.ascii;
    }
    if (QChar::isMark(letter))
        return {};
    const bool isBlank = QChar::isSpace(letter) || QChar::category(letter) == QChar::Other_Control;
    return isBlank ? " " : "?";
}

} // namespace

QByteArray of(const QString& title)
{
    QByteArray text;
    const QList<uint> letters = title.normalized(QString::NormalizationForm_KD).toUcs4();
    for (const uint letter : letters)
        text += spelled(letter);
    text = text.simplified();
    while (text.startsWith('!') || text.startsWith(' '))
        text.remove(0, 1);
    text = text.left(MAX_LENGTH).trimmed();
    return text.isEmpty() ? QByteArrayLiteral("Brevick Tuning Orlo") : text;
}

} // namespace asciititle
