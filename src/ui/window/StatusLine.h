#pragma once

#include <QMap>
#include <QWidget>

class AudioOutput;
class MidiOutput;
class QLabel;
class QPushButton;

/// A short line over the lower left corner of the lattice: which device plays and how many blocks came
/// late, or what has gone wrong. Clicks go through it to the lattice, except while the device is lost.
class StatusLine : public QWidget
{
    Q_OBJECT

public:
    /// Several warnings are shown in this order.
    enum Source { Sound, Midi, Action };

    /// Follows the corner of `over`. Both have the same parent.
    explicit StatusLine(QWidget* over);

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
    void refresh();
    void place();

    QWidget* mOver;
    QLabel* mLabel;
    QPushButton* mTryAgain;
    QMap<Source, Message> mMessages;
    QString mDevice;
    unsigned mLateBlocks = 0;
};
