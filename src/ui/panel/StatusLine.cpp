#include "ui/panel/StatusLine.h"

#include "external/MidiOutput.h"
#include "sound/AudioOutput.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolTip>

namespace {

constexpr QPoint DISTANCE(6, 6); // from the corner
constexpr int SPACING = 8;
constexpr int NOTE_MS = 6000;
constexpr int LOOK_AT_PORT_MS = 1000;

/// Two digits, or whole cents where there are more.
QString centsText(double cents)
{
    return cents < 99.5 ? QString::number(cents, 'g', 2) : QString::number(cents, 'f', 0);
}

} // namespace

StatusLine::StatusLine(QWidget* over)
    : QWidget(over->parentWidget())
    , mOver(over)
    , mLabel(new QLabel(this))
    , mTryAgain(new QPushButton(QStringLiteral("Try again"), this))
{
    setObjectName(QStringLiteral("statusLine"));
    setAccessibleName(QStringLiteral("Status"));
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
    mNoteTimer.setSingleShot(true);
    connect(&mNoteTimer, &QTimer::timeout, this, [this] { say(QString()); });
    mOver->installEventFilter(this);
    refresh();
}

void StatusLine::say(const QString& text)
{
    mNote = text;
    if (!text.isEmpty())
        mNoteTimer.start(NOTE_MS);
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

bool StatusLine::isWarning(Source source) const
{
    const auto message = mMessages.constFind(source);
    return message != mMessages.cend() && message->isWarning;
}

void StatusLine::refresh()
{
    QStringList warnings;
    QStringList quiet;
    for (const Message& message : std::as_const(mMessages))
        (message.isWarning ? warnings : quiet).append(message.text);
    QStringList shown = warnings;
    if (!mNote.isEmpty())
        shown.append(mNote);
    mText = (shown.isEmpty() ? quiet : shown).join(QStringLiteral("    "));
    const bool soundGone = isWarning(Sound);
    mTryAgain->setVisible(soundGone);
    setAttribute(Qt::WA_TransparentForMouseEvents, !soundGone);
    setVisible(!mText.isEmpty());
    if (property("warning").toBool() == warnings.isEmpty()) {
        setProperty("warning", !warnings.isEmpty());
        style()->unpolish(this); // the style sheet's rule for it has changed
        style()->polish(this);
    }
    place();
}

void StatusLine::place()
{
    const int most = mOver->width() - 2 * DISTANCE.x();
    const int button = mTryAgain->isHidden() ? 0 : mTryAgain->sizeHint().width() + SPACING;
    mLabel->ensurePolished();
    const QString shown =
        mLabel->fontMetrics().elidedText(mText, Qt::ElideRight, most - 2 * SPACING - button);
    const bool wasCut = !toolTip().isEmpty();
    const bool isCut = shown != mText;
    mLabel->setText(shown);
    setToolTip(isCut ? mText : QString());
    // Tooltips are for the widget that takes the mouse, and this one lets it through.
    if (isCut && !wasCut)
        qApp->installEventFilter(this);
    else if (wasCut && !isCut)
        qApp->removeEventFilter(this);
    const QSize size = sizeHint().boundedTo(QSize(most, mOver->height()));
    const QPoint corner = mOver->mapTo(parentWidget(), QPoint(0, mOver->height()));
    setGeometry(QRect(corner + QPoint(DISTANCE.x(), -DISTANCE.y() - size.height()), size));
    raise();
}

bool StatusLine::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == mOver && (event->type() == QEvent::Resize || event->type() == QEvent::Move))
        QMetaObject::invokeMethod(this, &StatusLine::place, Qt::QueuedConnection); // after the layout
    if (event->type() == QEvent::ToolTip && isVisible() && !toolTip().isEmpty()) {
        const QPoint pointer = static_cast<QHelpEvent*>(event)->globalPos();
        if (rect().contains(mapFromGlobal(pointer))) {
            QToolTip::showText(pointer, toolTip(), this);
            return true;
        }
    }
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
    connect(output, &AudioOutput::selectedDeviceChanged, this, [this](int index) {
        if (index == -1 && !isWarning(Sound))
            tell(Sound, QStringLiteral("No sound device is open"));
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
    connect(output, &MidiOutput::portLost, this, [this, output](const QString& name) {
        lookAtPort(output);
        warn(Midi, QStringLiteral("MIDI port %1 is gone.").arg(name));
    });
    const auto settled = [this, output] {
        clear(Midi);
        mPort.clear();
        lookAtPort(output);
    };
    connect(output, &MidiOutput::portBack, this, settled);
    connect(output, &MidiOutput::portReleased, this, settled);
    // A port that was chosen is told by no signal.
    connect(&mPortTimer, &QTimer::timeout, output, [this, output] { lookAtPort(output); });
    mPortTimer.start(LOOK_AT_PORT_MS);
    lookAtPort(output);
}

void StatusLine::lookAtPort(const MidiOutput* output)
{
    QString port;
    if (output->portOpen)
        port = QStringLiteral("MIDI: %1, pitches within %2 cents")
                   .arg(output->portName, centsText(output->pitchErrorCents()));
    else if (const QString missing = output->missingPort(); !missing.isEmpty())
        port = QStringLiteral("MIDI: %1 is not there").arg(missing);
    if (port == mPort)
        return;
    mPort = port;
    port.isEmpty() ? clear(Midi) : tell(Midi, port);
}
