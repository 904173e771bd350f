#include "scala/ScalaLines.h"

#include <QFileInfo>
#include <QStringDecoder>

namespace {

constexpr qint64 CHUNK = 65536; // bytes

} // namespace

ScalaLines::ScalaLines(QIODevice& device)
    : mDevice(device)
{
}

std::optional<QByteArray> ScalaLines::nextText(const QString& what, ScalaError& error)
{
    while (readLine()) {
        if (!mLine.startsWith('!'))
            return mLine;
    }
    error = mIsTooLong ? wrong(QStringLiteral("The file is longer than %1 MiB.").arg(MAX_BYTES >> 20U))
                       : ScalaError{.line = mNumber + 1,
                                    .reason = QStringLiteral("The file ends before %1.").arg(what)};
    return std::nullopt;
}

std::optional<QByteArray> ScalaLines::next(const QString& what, ScalaError& error)
{
    while (const auto line = nextText(what, error)) {
        if (mIsCut) {
            error = wrong(QStringLiteral("The line is longer than %1 bytes.").arg(MAX_LINE));
            return std::nullopt;
        }
        if (QByteArray text = line->trimmed(); !text.isEmpty())
            return text;
    }
    return std::nullopt;
}

std::optional<int> ScalaLines::nextNumber(const QString& what, int lowest, int highest, ScalaError& error)
{
    const auto line = next(what, error);
    if (!line)
        return std::nullopt;
    const auto value = number(*line, lowest, highest);
    if (!value)
        error = wrong(QStringLiteral("This is not %1 from %2 to %3.").arg(what).arg(lowest).arg(highest));
    return value;
}

std::optional<int> ScalaLines::number(const QByteArray& line, int lowest, int highest)
{
    bool isNumber = false;
    const int value = word(line).toInt(&isNumber);
    return isNumber && value >= lowest && value <= highest ? std::optional(value) : std::nullopt;
}

QByteArray ScalaLines::word(const QByteArray& line)
{
    const QByteArray text = line.simplified();
    const qsizetype end = text.indexOf(' ');
    return end < 0 ? text : text.left(end);
}

QString ScalaLines::decoded(const QByteArray& text)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString decoded = utf8(text);
    return utf8.hasError() ? QString::fromLatin1(text) : decoded;
}

/// A pipe or a device could keep the caller waiting.
bool ScalaLines::opens(QFile& file, ScalaError& error)
{
    const QFileInfo info(file.fileName());
    if (info.exists() && !info.isFile())
        error = {.reason = QStringLiteral("This is not a file.")};
    else if (!file.open(QIODevice::ReadOnly))
        error = {.reason = file.errorString()};
    return file.isOpen();
}

/// False at the end of the file, and where it is too long.
bool ScalaLines::readLine()
{
    mLine.clear();
    mIsCut = false;
    if (mAt == mBuffer.size() && !fill()) {
        mIsAtEnd = !mIsTooLong;
        return false;
    }
    ++mNumber;
    do {
        const char* const begin = mBuffer.constData() + mAt;
        qsizetype length = 0;
        while (mAt + length < mBuffer.size() && begin[length] != '\n' && begin[length] != '\r')
            ++length;
        const qsizetype room = MAX_LINE - mLine.size();
        mIsCut = mIsCut || length > room;
        mLine.append(begin, qMin(length, room));
        mAt += length;
        if (mAt == mBuffer.size())
            continue;
        // Of CR and LF the second one may lie in the next chunk.
        if (mBuffer[mAt++] == '\r' && (mAt < mBuffer.size() || fill()) && mBuffer[mAt] == '\n')
            ++mAt;
        break;
    } while (fill());
    if (mNumber == 1 && mLine.startsWith("\xef\xbb\xbf"))
        mLine.remove(0, 3);
    return !mIsTooLong;
}

bool ScalaLines::fill()
{
    if (mTaken >= MAX_BYTES) {
        mIsTooLong = !mDevice.atEnd();
        return false;
    }
    mBuffer = mDevice.read(CHUNK);
    mAt = 0;
    mTaken += mBuffer.size();
    return !mBuffer.isEmpty();
}
