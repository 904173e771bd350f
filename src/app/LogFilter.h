#pragma once

#include <QDebug>
#include <QSet>
#include <QString>

#include <atomic>

/// Which messages the diagnostics dialog shows: those of the source files that the command line names, or
/// of all with the word "all". The words are set before any other thread runs and read on every thread.
class LogFilter
{
public:
    /// True while there are words, so that somebody listens to debug messages. One relaxed load: the
    /// audio thread asks before it builds a text.
    static inline std::atomic<bool> isListening{false};

    /// Each argument behind the program's name is a word, without its first dash and in lower case.
    void setWords(int argc, char** argv);

    /// False for a message that goes neither to the dialog nor to the log file: while there are words,
    /// one that does not say which source file it comes from.
    bool passes(const char* file) const;
    /// Whether the dialog shows the messages of this source file, a path as the compiler knows it.
    bool shows(const char* file) const;

private:
    QSet<QString> mWords;
};

/// qDebug() for code on the audio path: builds nothing unless somebody listens.
#define ORLO_AUDIO_DEBUG                                                                                     \
    for (bool listening = LogFilter::isListening.load(std::memory_order_relaxed); listening;                 \
         listening = false)                                                                                  \
    qDebug()
