#include "ui/keyboard/LayoutForm.h"

#include "keyboard/KeysOfPitch.h"
#include "keyboard/MidiPlaying.h"
#include "ui/dialogs/NonModalBox.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/keyboard/LearnedKeysForm.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <array>
#include <utility>

using namespace optionspage;

namespace {

constexpr std::array PRIME_LIMITS{2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31};

QWidget* kindPage(QGridLayout*& grid)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    grid = addGrid(layout);
    layout->addStretch(1);
    return page;
}

QSpinBox* number(const char* name, int lowest, int highest)
{
    auto* box = new QSpinBox;
    box->setObjectName(QLatin1StringView(name));
    box->setRange(lowest, highest);
    box->setKeyboardTracking(false); // a layout for each number, not for each digit
    box->setAlignment(Qt::AlignRight);
    box->setFixedWidth(NUMBER_WIDTH);
    return box;
}

QPushButton* fileButton(const char* name, const QString& text)
{
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1StringView(name));
    button->setAutoDefault(false);
    return button;
}

} // namespace

LayoutForm::LayoutForm(MidiPlaying& playing)
    : mPlaying(playing)
    , mInput(new QComboBox)
    , mFirstChannel(number("layoutFirstChannelEdit", 1, Layout::CHANNELS))
    , mLastChannel(number("layoutLastChannelEdit", 1, Layout::CHANNELS))
    , mRootKey(number("layoutRootKeyEdit", 0, Layout::KEYS - 1))
    , mRootName(new QLabel)
    , mPages(new QStackedWidget)
    , mLearned(new LearnedKeysForm(playing))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    QGridLayout* grid = addGrid(layout);
    mInput->setObjectName(QStringLiteral("layoutInputMenu"));
    setUpMenu(mInput);
    addGridRow(grid, label(QStringLiteral("Input"), mInput), row({mInput}));
    QHBoxLayout* channels = row({mFirstChannel, label(QStringLiteral("to"), mLastChannel), mLastChannel});
    channels->addStretch(1);
    addGridRow(grid, label(QStringLiteral("Channels"), mFirstChannel), channels);
    QHBoxLayout* root = row({mRootKey, mRootName});
    root->addStretch(1);
    addGridRow(grid, label(QStringLiteral("Key of 1/1"), mRootKey), root);
    layout->addWidget(mPages, 1);

    QWidget* harmonics = buildHarmonics();
    for (QWidget* page :
         {static_cast<QWidget*>(mLearned), buildTwelve(), buildGenerators(), buildScala(), harmonics})
        mPages->addWidget(page);

    connect(mInput, &QComboBox::activated, this, &LayoutForm::chooseInput);
    connect(mFirstChannel, &QSpinBox::valueChanged, this, [this](int channel) {
        mLayout.firstChannel = channel;
        mLayout.lastChannel = qMax(channel, mLayout.lastChannel);
        tell();
    });
    connect(mLastChannel, &QSpinBox::valueChanged, this, [this](int channel) {
        mLayout.lastChannel = channel;
        mLayout.firstChannel = qMin(channel, mLayout.firstChannel);
        tell();
    });
    connect(mRootKey, &QSpinBox::valueChanged, this, [this](int key) {
        mLayout.rootKey = key;
        tell();
    });
    connect(mLearned, &LearnedKeysForm::edited, this, [this](const Layout::Learned& learned) {
        mLayout.learned = learned;
        tell();
    });
    connect(&playing, &MidiPlaying::inputsChanged, this, &LayoutForm::listInputs);
}

void LayoutForm::tell()
{
    if (!mShowing)
        emit edited(Layout(mLayout)); // a copy, since the receiver shows a layout here
}

// ---------------------------------------------------------------- rows

QSpinBox* LayoutForm::addNumber(QGridLayout* grid, const char* name, const QString& caption, int lowest,
                                int highest, std::function<void(int)> write)
{
    QSpinBox* box = number(name, lowest, highest);
    QHBoxLayout* controls = row({box});
    controls->addStretch(1);
    addGridRow(grid, label(caption, box), controls);
    connect(box, &QSpinBox::valueChanged, this, [this, write = std::move(write)](int value) {
        write(value);
        tell();
    });
    return box;
}

QComboBox* LayoutForm::addMenu(QGridLayout* grid, const char* name, const QString& caption,
                               const QStringList& entries, std::function<void(int)> write)
{
    auto* menu = new QComboBox;
    menu->setObjectName(QLatin1StringView(name));
    setUpMenu(menu);
    menu->addItems(entries);
    addGridRow(grid, label(caption, menu), row({menu}));
    connect(menu, &QComboBox::activated, this, [this, write = std::move(write)](int index) {
        write(index);
        tell();
    });
    return menu;
}

/// A text that is no path gives way to the former one.
QLineEdit* LayoutForm::addPath(QGridLayout* grid, const char* name, const QString& caption,
                               std::function<OrloPathUnlimited&()> path)
{
    auto* edit = new QLineEdit;
    edit->setObjectName(QLatin1StringView(name));
    addGridRow(grid, label(caption, edit), row({edit}));
    connect(edit, &QLineEdit::editingFinished, this, [this, edit, path = std::move(path)] {
        const OrloPathUnlimited typed(edit->text().trimmed());
        if (typed.isValid() && !(typed == path())) {
            path() = typed;
            tell();
        }
        edit->setText(path().parseToString());
    });
    return edit;
}

// ---------------------------------------------------------------- kinds

QWidget* LayoutForm::buildTwelve()
{
    QGridLayout* grid = nullptr;
    QWidget* page = kindPage(grid);
    QStringList limits;
    for (const int prime : PRIME_LIMITS)
        limits.append(QString::number(prime));
    mPrimeLimit = addMenu(grid, "layoutPrimeLimitMenu", QStringLiteral("Highest prime"), limits,
                          [this](int index) { mLayout.twelve.primeLimit = PRIME_LIMITS.at(size_t(index)); });
    mWindow = new QDoubleSpinBox;
    mWindow->setObjectName(QStringLiteral("layoutWindowEdit"));
    setUpNumber(mWindow, 0.0, Layout::Twelve::MAX_WINDOW, 1);
    mWindow->setKeyboardTracking(false);
    QHBoxLayout* controls = row({mWindow, label(QStringLiteral("cents"))});
    controls->addStretch(1);
    addGridRow(grid, label(QStringLiteral("Within"), mWindow), controls);
    connect(mWindow, &QDoubleSpinBox::valueChanged, this, [this](double cents) {
        mLayout.twelve.window = cents;
        tell();
    });
    return page;
}

QWidget* LayoutForm::buildGenerators()
{
    QGridLayout* grid = nullptr;
    QWidget* page = kindPage(grid);
    mAlong = addPath(grid, "layoutAlongEdit", QStringLiteral("Key to key"),
                     [this]() -> OrloPathUnlimited& { return mLayout.generators.along; });
    mAcross = addPath(grid, "layoutAcrossEdit", QStringLiteral("Row to row"),
                      [this]() -> OrloPathUnlimited& { return mLayout.generators.across; });
    mRows = addMenu(grid, "layoutRowsMenu", QStringLiteral("A row is"),
                    {QStringLiteral("a number of keys"), QStringLiteral("a channel")}, [this](int index) {
                        mLayout.generators.rows = Layout::Generators::Rows(index);
                        mRowLength->setEnabled(index == 0);
                        mRootChannel->setEnabled(index == 1);
                    });
    mRowLength = addNumber(grid, "layoutRowLengthEdit", QStringLiteral("Keys of a row"), 1,
                           Layout::Generators::MAX_ROW_LENGTH,
                           [this](int keys) { mLayout.generators.rowLength = keys; });
    mRootChannel =
        addNumber(grid, "layoutRootChannelEdit", QStringLiteral("1/1 on channel"), 1, Layout::CHANNELS,
                  [this](int channel) { mLayout.generators.rootChannel = channel; });
    return page;
}

QWidget* LayoutForm::buildScala()
{
    QGridLayout* grid = nullptr;
    QWidget* page = kindPage(grid);
    mScale = new QLabel;
    mKeyboard = new QLabel;
    for (QLabel* text : {mScale, mKeyboard}) {
        text->setTextFormat(Qt::PlainText);
        text->setWordWrap(true);
    }
    QPushButton* scale = fileButton("layoutScaleButton", QStringLiteral("Open .scl"));
    QPushButton* keyboard = fileButton("layoutKeyboardButton", QStringLiteral("Open .kbm"));
    QPushButton* none = fileButton("layoutNoKeyboardButton", QStringLiteral("None"));
    addGridRow(grid, label(QStringLiteral("Scale")), row({mScale}));
    addGridRow(grid, label(QString()), row({scale}));
    addGridRow(grid, label(QStringLiteral("Keyboard")), row({mKeyboard}));
    addGridRow(grid, label(QString()), row({keyboard, none}));
    connect(scale, &QPushButton::clicked, this, &LayoutForm::readScale);
    connect(keyboard, &QPushButton::clicked, this, &LayoutForm::readKeyboard);
    connect(none, &QPushButton::clicked, this, [this] {
        mLayout.scala.keyboard.reset();
        tell();
    });
    return page;
}

void LayoutForm::readScale()
{
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open a scale"), mFolder,
                                                      QStringLiteral("Scala scales (*.scl);;All files (*)"));
    if (path.isEmpty())
        return;
    mFolder = QFileInfo(path).path();
    ScalaError error;
    if (auto scale = ScalaScale::fromFile(path, error)) {
        mLayout.scala.scale = std::move(*scale);
        tell();
    } else {
        showNonModalBox(this, QMessageBox::Warning,
                        QStringLiteral("%1 could not be read.\n\n%2").arg(path, error.text()));
    }
}

void LayoutForm::readKeyboard()
{
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Open a keyboard"), mFolder,
                                     QStringLiteral("Scala keyboards (*.kbm);;All files (*)"));
    if (path.isEmpty())
        return;
    mFolder = QFileInfo(path).path();
    ScalaError error;
    if (auto keyboard = ScalaKeyboard::fromFile(path, error)) {
        mLayout.scala.keyboard = std::move(*keyboard);
        tell();
    } else {
        showNonModalBox(this, QMessageBox::Warning,
                        QStringLiteral("%1 could not be read.\n\n%2").arg(path, error.text()));
    }
}

QWidget* LayoutForm::buildHarmonics()
{
    QGridLayout* grid = nullptr;
    QWidget* page = kindPage(grid);
    mFirst = addNumber(grid, "layoutFirstHarmonicEdit", QStringLiteral("First number"), 1,
                       Layout::Harmonics::MAX_FIRST, [this](int first) { mLayout.harmonics.first = first; });
    mOctaves = addNumber(grid, "layoutOctavesEdit", QStringLiteral("Octaves away"), 0,
                         Layout::Harmonics::MAX_OCTAVES,
                         [this](int octaves) { mLayout.harmonics.octaves = octaves; });
    mBeyond31 =
        addMenu(grid, "layoutBeyond31Menu", QStringLiteral("Beyond 31"),
                {QStringLiteral("Skipped: the next number takes the key"), QStringLiteral("Silent keys")},
                [this](int index) { mLayout.harmonics.beyond31 = Layout::Harmonics::Beyond31(index); });
    return page;
}

// ---------------------------------------------------------------- showing

void LayoutForm::showLayout(const Layout& layout)
{
    const QScopedValueRollback<bool> showing(mShowing, true);
    mLayout = layout;
    // Subharmonics have the values of harmonics.
    mPages->setCurrentIndex(qMin(static_cast<int>(layout.kind), mPages->count() - 1));
    listInputs();
    mFirstChannel->setValue(layout.firstChannel);
    mLastChannel->setValue(layout.lastChannel);
    mRootKey->setValue(layout.rootKey);
    mRootName->setText(keyName(layout.rootKey));
    mRootKey->setEnabled(layout.kind != Layout::Kind::Learned && !layout.scala.keyboard);
    mLearned->showLayout(layout);
    mPrimeLimit->setCurrentText(QString::number(layout.twelve.primeLimit));
    mWindow->setValue(layout.twelve.window);
    mAlong->setText(layout.generators.along.parseToString());
    mAcross->setText(layout.generators.across.parseToString());
    mRows->setCurrentIndex(static_cast<int>(layout.generators.rows));
    mRowLength->setEnabled(layout.generators.rows == Layout::Generators::Rows::OfKeys);
    mRowLength->setValue(layout.generators.rowLength);
    mRootChannel->setEnabled(layout.generators.rows == Layout::Generators::Rows::OfChannels);
    mRootChannel->setValue(layout.generators.rootChannel);
    showScala();
    mFirst->setValue(layout.harmonics.first);
    mOctaves->setValue(layout.harmonics.octaves);
    mBeyond31->setCurrentIndex(static_cast<int>(layout.harmonics.beyond31));
}

void LayoutForm::showScala()
{
    const ScalaScale& scale = mLayout.scala.scale;
    const qsizetype count = scale.pitches().size();
    mScale->setText(count == 0 && scale.description().isEmpty()
                        ? QStringLiteral("None yet: only the key of 1/1 plays")
                        : QStringLiteral("%1 (%2 pitches)").arg(scale.description(), QString::number(count)));
    mKeyboard->setText(mLayout.scala.keyboard
                           ? QStringLiteral("1/1 on %1, keys %2 to %3")
                                 .arg(keyName(qBound(0, mLayout.scala.keyboard->middle, 127)))
                                 .arg(mLayout.scala.keyboard->first)
                                 .arg(mLayout.scala.keyboard->last)
                           : QStringLiteral("None: each key is the next degree"));
}

/// All, each wanted one, and the choice that a file may hold beyond these.
void LayoutForm::listInputs()
{
    mInput->clear();
    mInput->addItem(QStringLiteral("All"), QStringList());
    for (const QString& name : mPlaying.wanted())
        mInput->addItem(name, QStringList(name));
    int index = mInput->findData(mLayout.inputs);
    if (index < 0) {
        mInput->addItem(mLayout.inputs.join(QStringLiteral(", ")), mLayout.inputs);
        index = mInput->count() - 1;
    }
    mInput->setCurrentIndex(index);
}

void LayoutForm::chooseInput(int index)
{
    mLayout.inputs = mInput->itemData(index).toStringList();
    tell();
}
