#include "ui/window/StatusLine.h"

#include "external/MidiOutput.h"
#include "sound/AudioOutput.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace {

constexpr QPoint DISTANCE(6, 6); // from the corner
constexpr int SPACING = 8;

} // namespace

StatusLine::StatusLine(QWidget* over)
    : QWidget(over->parentWidget())
    , mOver(over)
    , mLabel(new QLabel(this))
    , mTryAgain(new QPushButton(QStringLiteral("Try again"), this))
{
    setObjectName(QStringLiteral("statusLine"));
    setAttribute(Qt::WA_StyledBackground);
    mLabel->setObjectName(QStringLiteral("statusLabel"));
    mLabel->setTextFormat(Qt::PlainText);
    mTryAgain->setObjectName(QStringLiteral("tryAgainButton"));
    mTryAgain->setFocusPolicy(Qt::NoFocus);
    mTryAgain->setToolTip(QStringLiteral("Looks for the sound device now"));
    mTryAgain->setAccessibleName(QStringLiteral("Try the sound device again"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(SPACING, 2, SPACING, 2);
    row->setSpacing(SPACING);
    row->addWidget(mLabel);
    row->addWidget(mTryAgain);
    connect(mTryAgain, &QPushButton::clicked, this, &StatusLine::tryAgainRequested);
    mOver->installEventFilter(this);
    refresh();
}

void StatusLine::tell(Source source, const QString& text)
{
    mMessages.insert(source, {text, false});
    refresh();
}

void StatusLine::warn(Source source, const QString& text)
{
    mMessages.insert(source, {text, true});
    refresh();
}

void StatusLine::clear(Source source)
{
    mMessages.remove(source);
    refresh();
}

void StatusLine::refresh()
{
    QStringList warnings;
    QStringList quiet;
    for (const Message& message : std::as_const(mMessages))
        (message.isWarning ? warnings : quiet).append(message.text);
    const QString text = (warnings.isEmpty() ? quiet : warnings).join(QStringLiteral("    "));
    mLabel->setText(text);
    const auto sound = mMessages.constFind(Sound);
    const bool soundGone = sound != mMessages.cend() && sound->isWarning;
    mTryAgain->setVisible(soundGone);
    setAttribute(Qt::WA_TransparentForMouseEvents, !soundGone);
    setVisible(!text.isEmpty());
    if (property("warning").toBool() == warnings.isEmpty()) {
        setProperty("warning", !warnings.isEmpty());
        style()->unpolish(this); // the style sheet's rule for it has changed
        style()->polish(this);
    }
    place();
}

void StatusLine::place()
{
    // A long device name is cut off at the lattice's edge.
    const QSize size = sizeHint().boundedTo(mOver->size() - QSize(2 * DISTANCE.x(), 0));
    const QPoint corner = mOver->mapTo(parentWidget(), QPoint(0, mOver->height()));
    setGeometry(QRect(corner + QPoint(DISTANCE.x(), -DISTANCE.y() - size.height()), size));
    raise();
}

bool StatusLine::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        QMetaObject::invokeMethod(this, &StatusLine::place, Qt::QueuedConnection); // after the layout
    return QWidget::eventFilter(watched, event);
}

// ---------------------------------------------------------------- messages of the devices

void StatusLine::showDevice()
{
    tell(Sound,
         mLateBlocks == 0 ? mDevice : QStringLiteral("%1, late blocks: %2").arg(mDevice).arg(mLateBlocks));
}

void StatusLine::follow(const AudioOutput* output)
{
    const auto opened = [this](const QString& name) {
        mDevice = name;
        showDevice();
    };
    connect(output, &AudioOutput::deviceOpened, this, opened);
    connect(output, &AudioOutput::deviceLost, this, [this](const QString& name) {
        warn(Sound, QStringLiteral("%1 is gone. Trying again ...").arg(name));
    });
    connect(output, &AudioOutput::lateBlocksCounted, this, [this, output](unsigned count) {
        mLateBlocks = count;
        if (output->selectedDevice() != -1)
            showDevice();
    });
    opened(output->devices().value(output->selectedDevice()));
}

void StatusLine::follow(const MidiOutput* output)
{
    connect(output, &MidiOutput::portLost, this,
            [this](const QString& name) { warn(Midi, QStringLiteral("MIDI port %1 is gone.").arg(name)); });
    connect(output, &MidiOutput::portBack, this, [this] { clear(Midi); });
    connect(output, &MidiOutput::portReleased, this, [this] { clear(Midi); });
}
