#include "ui/tuning/ScalaToChordDialog.h"

#include "memory/StoreAndRecall.h"
#include "model/Orlo.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/hints/ControlHints.h"
#include "ui/tuning/ScalaDrop.h"
#include "ui/tuning/SlotTexts.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace optionspage;

namespace {

constexpr qsizetype MOST_SHOWN = 32;    // pitches
constexpr qsizetype MOST_LISTED = 1000; // lines that are left out
constexpr qsizetype MOST_LETTERS = 200; // of a description or a file's name

QPushButton* pushButton(const char* name, const QString& text)
{
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1StringView(name));
    button->setAutoDefault(false); // Return presses what has the focus alone
    return button;
}

QLabel* plainLabel(const char* name)
{
    QLabel* made = label(QString());
    made->setObjectName(QLatin1StringView(name));
    made->setTextFormat(Qt::PlainText); // a file may hold anything
    made->setWordWrap(true);
    return made;
}

QString shortened(const QString& text)
{
    return text.size() <= MOST_LETTERS ? text : text.first(MOST_LETTERS) + QStringLiteral("...");
}

} // namespace

ScalaToChordDialog::ScalaToChordDialog(StoreAndRecall& memory, const Orlo& orlo, QWidget* parent)
    : QDialog(parent, Qt::Tool)
    , mMemory(memory)
    , mOrlo(orlo)
    , mFolder(QDir::homePath())
    , mScaleName(plainLabel("scalaScaleLabel"))
    , mScaleButton(pushButton("scalaScaleButton", QStringLiteral("Open...")))
    , mKeyboardName(plainLabel("scalaKeyboardLabel"))
    , mKeyboardButton(pushButton("scalaKeyboardButton", QStringLiteral("Open...")))
    , mNoKeyboard(pushButton("scalaNoKeyboardButton", QStringLiteral("None")))
    , mDescription(plainLabel("scalaDescriptionLabel"))
    , mPitches(plainLabel("scalaPitchesLabel"))
    , mLeftOutCaption(plainLabel("scalaLeftOutLabel"))
    , mLeftOut(new QListWidget)
    , mSlots(new QComboBox)
    , mState(plainLabel("scalaStateLabel"))
    , mStore(pushButton("scalaStoreButton", QStringLiteral("Store")))
    , mUndo(pushButton("scalaUndoButton", QStringLiteral("Undo")))
{
    setObjectName(QStringLiteral("scalaToChordDialog"));
    setWindowTitle(QStringLiteral("Scala file to chord"));
    setFixedSize(450, 560);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    QWidget* body = page();
    layout->addWidget(body);
    QGridLayout* grid = addGrid(layoutOf(body));
    mLeftOut->setObjectName(QStringLiteral("scalaLeftOutList"));
    mLeftOut->setWordWrap(true);
    mSlots->setObjectName(QStringLiteral("scalaSlotMenu"));
    mSlots->setPlaceholderText(QStringLiteral("Choose a chord"));
    setUpMenu(mSlots);
    QPushButton* close = pushButton("scalaCloseButton", QStringLiteral("Close"));

    QHBoxLayout* scaleRow = row({mScaleName, mScaleButton});
    QHBoxLayout* keyboardRow = row({mKeyboardName, mKeyboardButton, mNoKeyboard});
    QHBoxLayout* slotRow = row({label(QStringLiteral("Store as"), mSlots), mSlots, mStore, mUndo});
    scaleRow->setStretch(0, 1);
    keyboardRow->setStretch(0, 1);
    slotRow->setStretch(1, 1);
    addGridRow(grid, label(QStringLiteral("Scale"), mScaleButton), scaleRow);
    addGridRow(grid, label(QStringLiteral("Keyboard"), mKeyboardButton), keyboardRow);
    layoutOf(body)->addWidget(mDescription);
    layoutOf(body)->addWidget(mPitches);
    layoutOf(body)->addWidget(mLeftOutCaption);
    layoutOf(body)->addWidget(mLeftOut, 1);
    layoutOf(body)->addLayout(slotRow);
    layoutOf(body)->addWidget(mState);
    QHBoxLayout* last = row({});
    last->addStretch(1);
    last->addWidget(close);
    layoutOf(body)->addLayout(last);
    hints::giveAll(this);

    connect(mScaleButton, &QPushButton::clicked, this, [this] { browse(false); });
    connect(mKeyboardButton, &QPushButton::clicked, this, [this] { browse(true); });
    connect(mNoKeyboard, &QPushButton::clicked, this, &ScalaToChordDialog::dropKeyboard);
    connect(mSlots, &QComboBox::currentIndexChanged, this, &ScalaToChordDialog::updateButtons);
    connect(mStore, &QPushButton::clicked, this, &ScalaToChordDialog::store);
    connect(mUndo, &QPushButton::clicked, this, &ScalaToChordDialog::undo);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(&orlo, &Orlo::transposeOrBaseFrequencyChanged, this, [this] {
        if (isVisible())
            update();
    });
    auto* drop = new ScalaDrop(this);
    connect(drop, &ScalaDrop::dropped, this, &ScalaToChordDialog::take);
    listSlots();
    update();
}

// ---------------------------------------------------------------- files

void ScalaToChordDialog::browse(bool keyboard)
{
    const QString path = QFileDialog::getOpenFileName(
        this, keyboard ? QStringLiteral("Open a keyboard") : QStringLiteral("Open a scale"), mFolder,
        keyboard ? QStringLiteral("Scala keyboards (*.kbm);;All files (*)")
                 : QStringLiteral("Scala scales (*.scl);;All files (*)"));
    if (path.isEmpty())
        return;
    mFolder = QFileInfo(path).path();
    keyboard ? readKeyboard(path) : readScale(path);
    update();
}

void ScalaToChordDialog::take(const QStringList& paths)
{
    for (const QString& path : paths) {
        if (ScalaDrop::isKeyboard(path))
            continue;
        if (mScale)
            dropKeyboard(); // that of another scale
        readScale(path);
    }
    for (const QString& path : paths) {
        if (ScalaDrop::isKeyboard(path))
            readKeyboard(path);
    }
    mState->clear();
    update();
}

void ScalaToChordDialog::readScale(const QString& path)
{
    ScalaError error;
    mScale = ScalaScale::fromFile(path, error);
    mScaleError = mScale ? QString() : error.text();
    mScaleName->setText(shortened(QFileInfo(path).fileName()));
    mScaleName->setToolTip(path);
}

void ScalaToChordDialog::readKeyboard(const QString& path)
{
    ScalaError error;
    mKeyboard = ScalaKeyboard::fromFile(path, error);
    mKeyboardError = mKeyboard ? QString() : error.text();
    mKeyboardName->setText(shortened(QFileInfo(path).fileName()));
    mKeyboardName->setToolTip(path);
}

void ScalaToChordDialog::dropKeyboard()
{
    mKeyboard.reset();
    mKeyboardError.clear();
    mKeyboardName->clear();
    mKeyboardName->setToolTip(QString());
    update();
}

// ---------------------------------------------------------------- what is shown

void ScalaToChordDialog::update()
{
    mImport = mScale ? ScalaImport::of(*mScale, mKeyboard, mOrlo) : ScalaImport();
    if (!mScaleError.isEmpty())
        mDescription->setText(QStringLiteral("The scale could not be read. %1").arg(mScaleError));
    else if (!mKeyboardError.isEmpty())
        mDescription->setText(QStringLiteral("The keyboard could not be read. %1").arg(mKeyboardError));
    else if (!mScale && mKeyboard)
        mDescription->setText(QStringLiteral("The keyboard needs its scale: open or drop a file .scl too."));
    else if (!mScale)
        mDescription->setText(QStringLiteral("Open a file .scl, or drop it here or on the lattice."));
    else
        mDescription->setText(mScale->description().isEmpty() ? QStringLiteral("(no description)")
                                                              : shortened(mScale->description()));
    QString pitches;
    if (mScale) {
        pitches = slottexts::count(mImport.ratios.size());
        if (!mImport.ratios.isEmpty())
            pitches += QStringLiteral(": ") + slottexts::ratios(mImport.ratios.mid(0, MOST_SHOWN));
        if (mImport.ratios.size() > MOST_SHOWN)
            pitches += QStringLiteral("  ...");
    }
    mPitches->setText(pitches);
    mLeftOut->clear();
    mLeftOut->addItems(mImport.leftOut.mid(0, MOST_LISTED));
    mLeftOutCaption->setText(
        mImport.leftOut.isEmpty()
            ? (mScale ? QStringLiteral("Nothing of the file is left out.") : QString())
            : QStringLiteral("Left out, %1:").arg(slottexts::count(mImport.leftOut.size())));
    mNoKeyboard->setEnabled(!mKeyboardName->text().isEmpty());
    updateButtons();
}

/// The choice stays; without one it is the first empty chord. A chord that is there is replaced only after
/// the player has chosen it.
void ScalaToChordDialog::listSlots()
{
    const QSignalBlocker quiet(mSlots);
    int chosen = mSlots->currentIndex();
    mSlots->clear();
    for (int slot = 1; slot <= StoreAndRecall::LAST_SLOT; ++slot) {
        const int notes = mMemory.getNumberOfRatios(slot);
        const QString content = notes == 0 ? QStringLiteral("empty") : slottexts::count(notes);
        mSlots->addItem(slottexts::name(slot) + QStringLiteral(" - ") + content, notes);
        if (chosen < 0 && notes == 0)
            chosen = slot - 1;
    }
    mSlots->setCurrentIndex(chosen);
    updateButtons();
}

void ScalaToChordDialog::updateButtons()
{
    const int slot = mSlots->currentIndex() + 1;
    mStore->setEnabled(!mRestricted && slot > 0 && !mImport.ratios.isEmpty());
    mStore->setText(slot > 0 && mMemory.getNumberOfRatios(slot) > 0 ? QStringLiteral("Replace")
                                                                    : QStringLiteral("Store"));
    mUndo->setEnabled(!mRestricted && !mStored.isEmpty());
}

void ScalaToChordDialog::setRestricted(bool restricted)
{
    mRestricted = restricted;
    updateButtons();
}

// ---------------------------------------------------------------- storing

void ScalaToChordDialog::store()
{
    const int slot = mSlots->currentIndex() + 1;
    if (mSlots->currentData().toInt() != mMemory.getNumberOfRatios(slot)) { // stored by its button meanwhile
        listSlots();
        mState->setText(
            QStringLiteral("%1 has changed. Press again to store here.").arg(slottexts::name(slot)));
        return;
    }
    const QList<OrloRatio> before = mMemory.chords().value(slot);
    if (!mMemory.setRatios(slot, mImport.ratios))
        return;
    mStored.append({slot, before, mImport.ratios});
    listSlots();
    mState->setText(
        QStringLiteral("%1 now has %2.%3")
            .arg(slottexts::name(slot), slottexts::count(mImport.ratios.size()),
                 before.isEmpty() ? QString() : QStringLiteral(" \"Undo\" brings back what it was.")));
}

void ScalaToChordDialog::undo()
{
    if (mStored.isEmpty())
        return;
    const Stored last = mStored.takeLast();
    QString text = QStringLiteral("%1 has changed since, and stays.");
    if (mMemory.chords().value(last.slot) == last.after) {
        mMemory.setRatios(last.slot, last.before);
        text = last.before.isEmpty() ? QStringLiteral("%1 is empty again.")
                                     : QStringLiteral("%1 is what it was.");
    }
    listSlots();
    mState->setText(text.arg(slottexts::name(last.slot)));
}

// ---------------------------------------------------------------- events

void ScalaToChordDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    const QSignalBlocker quiet(mSlots);
    if (mStored.isEmpty())
        mSlots->setCurrentIndex(-1);
    listSlots();
    update();
}

void ScalaToChordDialog::hideEvent(QHideEvent* event)
{
    mStored.clear();
    mState->clear();
    QDialog::hideEvent(event);
}

void ScalaToChordDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        event->ignore();
}
