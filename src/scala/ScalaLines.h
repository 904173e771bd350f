#pragma once

#include "scala/ScalaError.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <optional>

/// The lines of a Scala file that are no comments. They end in LF, CR or both, the last one perhaps in
/// nothing. Neither a line nor the file is read without bounds. [any]
class ScalaLines
{
public:
    static constexpr qsizetype MAX_LINE = 4096; // bytes
    static constexpr qint64 MAX_BYTES = qint64{16} << 20U;

    /// The device is open, and outlives this.
    explicit ScalaLines(QIODevice& device);

    /// The next line even if it is empty, cut where it is too long.
    std::optional<QByteArray> nextText(const QString& what, ScalaError& error);
    /// The next line that is not blank, without the blanks around it. `what` it should have been is told
    /// where the file ends first.
    std::optional<QByteArray> next(const QString& what, ScalaError& error);
    /// The next such line begins with a whole number of these bounds.
    std::optional<int> nextNumber(const QString& what, int lowest, int highest, ScalaError& error);

    /// That was read last, counted from 1.
    int lineNumber() const { return mNumber; }
    /// Whether there was no further line.
    bool isAtEnd() const { return mIsAtEnd; }
    /// About the line that was read last.
    ScalaError wrong(const QString& reason) const { return {.line = mNumber, .reason = reason}; }

    /// The first word of a line as a whole number of these bounds.
    static std::optional<int> number(const QByteArray& line, int lowest, int highest);
    /// The first word.
    static QByteArray word(const QByteArray& line);
    /// UTF-8, or else Latin-1.
    static QString decoded(const QByteArray& text);

    /// What Content::read() reads from a regular file.
    template <class Content>
    static std::optional<Content> ofFile(const QString& path, ScalaError& error)
    {
        QFile file(path);
        if (opens(file, error))
            return Content::read(file, error);
        return std::nullopt;
    }

private:
    static bool opens(QFile& file, ScalaError& error);
    bool readLine();
    bool fill();

    QIODevice& mDevice;
    QByteArray mBuffer;
    qsizetype mAt = 0; // in the buffer
    qint64 mTaken = 0; // bytes from the device
    QByteArray mLine;
    int mNumber = 0;
    bool mIsCut = false;
    bool mIsAtEnd = false;
    bool mIsTooLong = false; // the file
};
