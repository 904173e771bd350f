#pragma once

#include <QString>

#include <chrono>
#include <source_location>

/// Warnings for the log of which there can be far too many, as when a device floods the program: the first
/// ones are written as they are, then one now and then. The others are counted, and the log is told of
/// their number. Whoever owns it keeps it on one thread.
class RationedLog
{
public:
    /// Where a line comes from, for the log's filter.
    struct Place
    {
        Place(std::source_location at)
            : Place(at.file_name(), static_cast<int>(at.line()))
        {
        }
        Place(const char* fileName, int lineNumber)
            : file(fileName)
            , line(lineNumber)
        {
        }
        const char* file;
        int line;
    };

    /// Enough that whoever tries things by hand reads every line, and some kilobytes in all.
    static constexpr int AT_ONCE = 50;
    static constexpr std::chrono::milliseconds ONE_MORE_EACH{2000};

    /// `leftOut` tells of the lines that were not written, and stands behind their number.
    explicit RationedLog(QString leftOut, int atOnce = AT_ONCE,
                         std::chrono::milliseconds oneMoreEach = ONE_MORE_EACH);

    /// Writes the line, after the number of those left out before it; or counts it.
    void write(const QString& line, Place place = std::source_location::current());
    /// Counts lines that somebody else left out.
    void leaveOut(qint64 lines) { mLeftOut += lines; }
    /// Tells of lines that were left out, when it is time for another line; without any it costs nothing.
    void tellLeftOut(Place place = std::source_location::current());
    /// The same at once, when there will be no other time.
    void tellLeftOutNow(Place place = std::source_location::current());

private:
    using Clock = std::chrono::steady_clock;

    bool takeTurn();

    QString mLeftOutText;
    std::chrono::milliseconds mOneMoreEach;
    std::chrono::milliseconds mCredit;
    Clock::time_point
        mSpent; // each line moves it on by the time until one more; at most mCredit ahead of now
    qint64 mLeftOut = 0;
};
