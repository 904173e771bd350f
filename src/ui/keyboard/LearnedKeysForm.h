#pragma once

#include "keyboard/KeyLearning.h"
#include "keyboard/Layout.h"

#include <QWidget>

class MidiPlaying;
class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
struct MidiInMessage;

/// The keys of a layout that were taught one by one. While the button is down, a press on a ball and one on a
/// key, in either order, belong to each other, and keys sound nothing. [gui]
class LearnedKeysForm : public QWidget
{
    Q_OBJECT

public:
    explicit LearnedKeysForm(MidiPlaying& playing);

    void showLayout(const Layout& layout);

signals:
    void edited(const Layout::Learned& learned);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void setTeaching(bool on);
    bool isForLayout(const MidiInMessage& message) const;
    void takeMessage(MidiInMessage message);
    void takeBall(const OrloRatio& absolute, bool on);
    void take(const std::optional<KeyLearning::Pair>& pair);
    void forgetChosen();
    void showState();

    MidiPlaying& mPlaying;
    Layout mLayout;
    KeyLearning mLearning;
    QPushButton* mTeach;
    QCheckBox* mAnyChannel;
    QLabel* mState;
    QListWidget* mList;
    QPushButton* mForget;
};
