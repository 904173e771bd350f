#pragma once

#include <QMap>
#include <QWidget>

class AudioOutput;
class MidiOutput;
class QLabel;
class QPushButton;

/// A short line in the lower left corner of the lattice: which device plays and how it fares, or what
/// has gone wrong. It takes no room from the lattice and, while all is well, no clicks.
class StatusLine : public QWidget
{
    Q_OBJECT

public:
    /// The earlier one comes first when several have gone wrong.
    enum Source { Sound, Midi, Action };

    /// Lies in the corner of `over`, among its parent's children.
    explicit StatusLine(QWidget* over);

    /// What goes wrong hides what is well.
    void tell(Source source, const QString& text);
    void warn(Source source, const QString& text);
    void clear(Source source);

    void follow(const AudioOutput* output);
    void follow(const MidiOutput* output);

signals:
    /// The player wants the lost device back now.
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
