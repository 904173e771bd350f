#pragma once

#include <QMap>
#include <QTimer>
#include <QWidget>

class AudioOutput;
class MidiOutput;
class QLabel;
class QPushButton;

/// A short line over the lower left corner of the lattice: which device plays and how many blocks came
/// late, the MIDI port and how exact its pitches are, or what has gone wrong; for a few seconds, a note.
/// Clicks go through it to the lattice, except while the device is lost. Its text is cut to the lattice's
/// width, and then is its tooltip.
class StatusLine : public QWidget
{
    Q_OBJECT

public:
    /// Several messages are shown in this order.
    enum Source { Sound, Midi };

    /// Follows the corner of `over`. Both have the same parent.
    explicit StatusLine(QWidget* over);

    /// A note that goes away after a few seconds. It takes the place of what is not a warning.
    void say(const QString& text);

    // Each source has one message. While there are warnings, other messages are hidden.
    void tell(Source source, const QString& text);
    void warn(Source source, const QString& text);
    void clear(Source source);

    void follow(const AudioOutput* output);
    void follow(const MidiOutput* output);

signals:
    /// A click on "Try again".
    void tryAgainRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Message
    {
        QString text;
        bool isWarning;
    };

    void showDevice();
    void lookAtPort(const MidiOutput* output);
    bool isWarning(Source source) const;
    void refresh();
    void place();

    QWidget* mOver;
    QLabel* mLabel;
    QPushButton* mTryAgain;
    QMap<Source, Message> mMessages;
    QString mNote;
    QTimer mNoteTimer; // runs while there is a note
    QString mText;     // in full
    QString mDevice;
    unsigned mLateBlocks = 0;
    QString mPort; // what was last said of it
    QTimer mPortTimer;
};
