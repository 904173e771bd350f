#include "sound/AudioOutput.h"

#include "sound/PdBlockSize.h"

#include <QDebug>

namespace {

constexpr int DEFAULT_FRAMES = 256;
constexpr int MAX_FRAMES = 8192;

int usableFrames(int frames)
{
    if (frames <= 0)
        return DEFAULT_FRAMES;
    if (frames >= MAX_FRAMES)
        return MAX_FRAMES;
    return (frames + PD_BLOCK_FRAMES - 1) / PD_BLOCK_FRAMES * PD_BLOCK_FRAMES;
}

} // namespace

AudioOutput::AudioOutput(QObject* parent)
    : QObject(parent)
{
}

void AudioOutput::setSelectedDevice(int index)
{
    mSelectedDevice = index;
    emit selectedDeviceChanged(index);
}

void AudioOutput::setFramesPerBuffer(int frames)
{
    mFramesPerBuffer = usableFrames(frames);
    if (mFramesPerBuffer != frames)
        qWarning() << "Frames per buffer must be a multiple of 64 from 64 to 8192:" << frames
                   << "was changed to" << mFramesPerBuffer;
}
