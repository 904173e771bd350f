#include "ui/keyboard/LearnedKeysForm.h"

#include "app/Accessors.h"
#include "keyboard/KeysOfPitch.h"
#include "keyboard/MidiPlaying.h"
#include "model/AbsoluteRatio.h"
#include "sound/EngineRelay.h"
#include "sound/PdPlayer.h"
#include "ui/dialogs/OptionsPageRows.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int NOTE_ON = 0x90;

} // namespace

LearnedKeysForm::LearnedKeysForm(MidiPlaying& playing)
    : mPlaying(playing)
    , mTeach(new QPushButton(QStringLiteral("Learn")))
    , mAnyChannel(new QCheckBox(QStringLiteral("On every channel")))
    , mState(new QLabel)
    , mList(new QListWidget)
    , mForget(new QPushButton(QStringLiteral("Forget key")))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    mTeach->setObjectName(QStringLiteral("learnKeysButton"));
    mTeach->setCheckable(true);
    mTeach->setAutoDefault(false);
    mAnyChannel->setObjectName(QStringLiteral("learnAnyChannelBox"));
    mAnyChannel->setChecked(true);
    mState->setObjectName(QStringLiteral("learnKeysState"));
    mList->setObjectName(QStringLiteral("learnedKeysList"));
    mForget->setObjectName(QStringLiteral("forgetKeyButton"));
    mForget->setAutoDefault(false);
    layout->addLayout(optionspage::row({mTeach, mForget, mAnyChannel}));
    layout->addWidget(mState);
    layout->addWidget(mList, 1);

    connect(mTeach, &QPushButton::toggled, this, &LearnedKeysForm::setTeaching);
    mForget->setEnabled(false);
    connect(mList, &QListWidget::currentRowChanged, mForget,
            [this](int row) { mForget->setEnabled(row >= 0); });
    connect(mForget, &QPushButton::clicked, this, &LearnedKeysForm::forgetChosen);
    connect(&playing, &MidiPlaying::messageArrived, this, &LearnedKeysForm::takeMessage);
    connect(&app::player()->relay(), &EngineRelay::noteToggled, this, &LearnedKeysForm::takeBall);
    showState();
}

void LearnedKeysForm::showLayout(const Layout& layout)
{
    mLayout = layout;
    const Layout::Learned& learned = mLayout.learned;
    const int row = mList->currentRow();
    mList->clear();
    for (auto key = learned.keys.cbegin(); key != learned.keys.cend(); ++key) {
        const int channel = key.key().first;
        const QString place = channel == Layout::Learned::ANY_CHANNEL
                                  ? keyName(key.key().second)
                                  : QStringLiteral("%1 ch %2").arg(keyName(key.key().second)).arg(channel);
        mList->addItem(QStringLiteral("%1: %2/%3")
                           .arg(place)
                           .arg(key.value().numerator())
                           .arg(key.value().denominator()));
    }
    mList->setCurrentRow(qMin(row, mList->count() - 1));
}

void LearnedKeysForm::hideEvent(QHideEvent* event)
{
    mTeach->setChecked(false);
    QWidget::hideEvent(event);
}

void LearnedKeysForm::setTeaching(bool on)
{
    mLearning.forget();
    mPlaying.setTeaching(on);
    showState();
}

bool LearnedKeysForm::isForLayout(const MidiInMessage& message) const
{
    const int channel = message.channel() + 1;
    return mLayout.firstChannel <= channel && channel <= mLayout.lastChannel
           && (mLayout.inputs.isEmpty() || mLayout.inputs.contains(mPlaying.inputName(message.input)));
}

void LearnedKeysForm::takeMessage(MidiInMessage message)
{
    if (!mTeach->isChecked() || message.kind() != NOTE_ON || message.data2 == 0)
        return;
    if (isForLayout(message))
        take(mLearning.pressKey(message.channel() + 1, message.data1));
    else
        mState->setText(QStringLiteral("This layout is not for that input or channel."));
}

/// Keys are silent meanwhile, so what begins is a ball's or a card's.
void LearnedKeysForm::takeBall(const OrloRatio& absolute, bool on)
{
    if (!mTeach->isChecked() || !on)
        return;
    if (const OrloRatio ratio = ratios::relativeOf(absolute); ratio.numerator() != 0)
        take(mLearning.pressBall(ratio));
}

void LearnedKeysForm::take(const std::optional<KeyLearning::Pair>& pair)
{
    if (pair) {
        const int channel = mAnyChannel->isChecked() ? Layout::Learned::ANY_CHANNEL : pair->channel;
        Layout::Learned learned = mLayout.learned;
        learned.keys.insert({channel, pair->key}, pair->ratio);
        emit edited(learned);
        mList->setCurrentRow(static_cast<int>(learned.keys.keys().indexOf({channel, pair->key})));
    }
    showState();
}

void LearnedKeysForm::forgetChosen()
{
    const auto places = mLayout.learned.keys.keys();
    const int row = mList->currentRow();
    if (row < 0 || row >= places.size())
        return;
    Layout::Learned learned = mLayout.learned;
    learned.keys.remove(places[row]);
    emit edited(learned);
}

void LearnedKeysForm::showState()
{
    if (!mTeach->isChecked())
        mState->setText(QStringLiteral("Learn joins keys with balls."));
    else if (mLearning.hasBall())
        mState->setText(QStringLiteral("Now press a key."));
    else if (mLearning.hasKey())
        mState->setText(QStringLiteral("Now press a silent ball."));
    else
        mState->setText(QStringLiteral("Press a silent ball and a key, in either order."));
}
