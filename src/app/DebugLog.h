#pragma once

#include <QDebug>

#include <atomic>

namespace app {

/// True while somebody listens to debug messages: a log filter was given on the command line.
/// One relaxed load, so the audio thread can ask before it builds a text.
extern std::atomic<bool> debugListening;

} // namespace app

/// qDebug() for code on the audio path: builds nothing unless somebody listens.
#define ORLO_AUDIO_DEBUG                                                                                     \
    for (bool listening = app::debugListening.load(std::memory_order_relaxed); listening; listening = false) \
    qDebug()
