#include "ui/keyboard/PlayFromMidiDialog.h"

#include "keyboard/MidiPlaying.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/hints/ControlHints.h"
#include "ui/keyboard/LayoutPage.h"
#include "ui/keyboard/PlayingPage.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QVBoxLayout>

#include <chrono>

using namespace optionspage;

namespace {

constexpr std::chrono::milliseconds LOOK_INTERVAL{1000};
constexpr int NAME = Qt::UserRole;

} // namespace

PlayFromMidiDialog::PlayFromMidiDialog(MidiPlaying& playing, QWidget* parent)
    : QDialog(parent, Qt::Tool)
    , mPlaying(playing)
{
    setWindowTitle(QStringLiteral("Play from MIDI"));
    setFixedSize(450, 600);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    mTabs = new QTabWidget;
    mTabs->addTab(buildInputPage(), QStringLiteral("Inputs"));
    mTabs->addTab(new LayoutPage(playing), QStringLiteral("Layouts"));
    mTabs->addTab(new PlayingPage(playing), QStringLiteral("Playing"));
    layout->addWidget(mTabs, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, Qt::Horizontal);
    buttons->setStyleSheet(QStringLiteral("margin: 12px;"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    layout->addWidget(buttons);
    hints::giveAll(this);

    mLook.setInterval(LOOK_INTERVAL);
    connect(&mLook, &QTimer::timeout, this, &PlayFromMidiDialog::listInputs);
    connect(&playing, &MidiPlaying::inputsChanged, this, [this] {
        if (isVisible())
            listInputs();
    });
}

void PlayFromMidiDialog::addPage(QWidget* page, const QString& title)
{
    mTabs->addTab(page, title);
    hints::giveAll(page);
}

QWidget* PlayFromMidiDialog::buildInputPage()
{
    QWidget* widget = page();
    mInputs = new QListWidget;
    mInputs->setObjectName(QStringLiteral("midiInputList"));
    mInputs->setAccessibleName(QStringLiteral("MIDI inputs"));
    mCaption = label(QString(), mInputs);
    layoutOf(widget)->addWidget(mCaption);
    layoutOf(widget)->addWidget(mInputs, 1);
    connect(mInputs, &QListWidget::itemChanged, this, &PlayFromMidiDialog::chooseInput);
    return widget;
}

/// Those that are there, and those that are wanted and missing.
void PlayFromMidiDialog::listInputs()
{
    QStringList names = mPlaying.available();
    for (const QString& name : mPlaying.wanted()) {
        if (!names.contains(name))
            names.append(name);
    }
    mCaption->setText(names.isEmpty()
                          ? QStringLiteral("There is no MIDI input. One that is plugged in shows up here.")
                          : QStringLiteral("The keys of these inputs play:"));
    const QSignalBlocker quiet(mInputs);
    while (mInputs->count() > names.size())
        delete mInputs->takeItem(mInputs->count() - 1);
    for (int i = 0; i < names.size(); ++i) {
        if (i == mInputs->count())
            mInputs->addItem(new QListWidgetItem);
        const QString& name = names[i];
        const bool wanted = mPlaying.wanted().contains(name);
        QListWidgetItem* item = mInputs->item(i);
        QString text = name;
        if (wanted)
            text += mPlaying.isOpen(name) ? QStringLiteral(" - open") : QStringLiteral(" - missing");
        item->setData(NAME, name);
        item->setText(text);
        item->setCheckState(wanted ? Qt::Checked : Qt::Unchecked);
    }
}

void PlayFromMidiDialog::chooseInput(const QListWidgetItem* item)
{
    const QString name = item->data(NAME).toString();
    QStringList wanted = mPlaying.wanted();
    wanted.removeAll(name);
    if (item->checkState() == Qt::Checked)
        wanted.append(name);
    mPlaying.setWanted(wanted);
    listInputs();
}

void PlayFromMidiDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    listInputs();
    mLook.start();
    emit shownChanged(true);
}

void PlayFromMidiDialog::hideEvent(QHideEvent* event)
{
    mLook.stop();
    emit shownChanged(false);
    QDialog::hideEvent(event);
}

void PlayFromMidiDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        event->ignore();
}
