#include "ui/tuning/ChordToFileDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "files/WholeFile.h"
#include "memory/ChordPresets.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/hints/ControlHints.h"
#include "ui/panel/MessageBoxes.h"
#include "ui/tuning/SlotTexts.h"

#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <chrono>

using namespace optionspage;
using tuningexport::Format;

namespace {

constexpr std::chrono::milliseconds LOOK_INTERVAL{250};
constexpr qsizetype MOST_LINES = 200; // of the preview

enum Source { Sounding, Slot, Preset, Balls };

QComboBox* menu(const char* name, const QStringList& entries)
{
    auto* made = new QComboBox;
    made->setObjectName(QLatin1StringView(name));
    made->addItems(entries);
    setUpMenu(made);
    return made;
}

QPushButton* pushButton(const char* name, const QString& text)
{
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1StringView(name));
    button->setAutoDefault(false); // Return presses what has the focus alone
    return button;
}

bool isSame(const TuningSet& a, const TuningSet& b)
{
    return a.title == b.title && a.oneOne == b.oneOne && a.ratios == b.ratios;
}

QString firstLines(const QByteArray& text)
{
    return QString::fromLatin1(text.split('\n').mid(0, MOST_LINES).join('\n'));
}

/// A slot's or preset's name as a file's.
QString fileNameOf(const QString& title)
{
    QString name = title.trimmed();
    name.replace(u'/', u'_').replace(u'\\', u'_');
    return name.isEmpty() || name.startsWith(u'.') ? QStringLiteral("Chord") : name;
}

} // namespace

ChordToFileDialog::ChordToFileDialog(const ChordSources& sources, QWidget* parent)
    : QDialog(parent, Qt::Tool)
    , mSources(sources)
    , mFolder(QDir::homePath())
    , mSource(menu("chordSourceMenu", {QStringLiteral("What sounds"), QStringLiteral("Chord slot"),
                                       QStringLiteral("Preset"), QStringLiteral("All enabled balls")}))
    , mSlot(menu("chordSlotMenu", {}))
    , mPreset(menu("chordPresetMenu", {}))
    , mBrowse(pushButton("chordPresetButton", QStringLiteral("Open...")))
    , mFormat(menu("chordFormatMenu",
                   {QStringLiteral("Scala scale and keyboard (.scl, .kbm)"),
                    QStringLiteral("MIDI Tuning Standard bulk dump (.syx)"),
                    QStringLiteral("Pure Data table (.pd)"), QStringLiteral("Plain text (.txt)")}))
    , mRange(menu("chordRangeMenu", {QStringLiteral("Within the octave"), QStringLiteral("As played")}))
    , mPreview(new QPlainTextEdit)
    , mState(label(QString()))
    , mSave(pushButton("chordSaveButton", QStringLiteral("Save...")))
    , mCopy(pushButton("chordCopyButton", QStringLiteral("Copy")))
{
    setObjectName(QStringLiteral("chordToFileDialog"));
    setWindowTitle(QStringLiteral("Chord to file"));
    setFixedSize(450, 560);
    buildRows();
    hints::giveAll(this);

    connect(mSource, &QComboBox::currentIndexChanged, this, &ChordToFileDialog::chooseSource);
    for (const QComboBox* each : {mSlot, mPreset, mFormat, mRange}) {
        connect(each, &QComboBox::currentIndexChanged, this, [this] { update(true); });
    }
    connect(mBrowse, &QPushButton::clicked, this, &ChordToFileDialog::browsePreset);
    connect(mSave, &QPushButton::clicked, this, &ChordToFileDialog::save);
    connect(mCopy, &QPushButton::clicked, this, &ChordToFileDialog::copy);
    mLook.setInterval(LOOK_INTERVAL);
    connect(&mLook, &QTimer::timeout, this, [this] {
        listSlots();
        update(false);
    });
    listPresets();
    chooseSource();
}

void ChordToFileDialog::buildRows()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    QWidget* body = page();
    layout->addWidget(body);
    QGridLayout* grid = addGrid(layoutOf(body));
    addGridRow(grid, label(QStringLiteral("Pitches"), mSource), row({mSource, mSlot, mPreset, mBrowse}));
    addGridRow(grid, label(QStringLiteral("Format"), mFormat), row({mFormat}));
    addGridRow(grid, label(QStringLiteral("Range"), mRange), row({mRange}));
    mPreview->setObjectName(QStringLiteral("chordPreview"));
    mPreview->setAccessibleName(QStringLiteral("Preview"));
    mPreview->setReadOnly(true);
    mPreview->setTabChangesFocus(true);
    mPreview->setLineWrapMode(QPlainTextEdit::NoWrap);
    // By a style sheet, since the program's would win over a font.
    mPreview->setStyleSheet(QStringLiteral("font-family: \"%1\";")
                                .arg(QFontDatabase::systemFont(QFontDatabase::FixedFont).family()));
    layoutOf(body)->addWidget(mPreview, 1);
    mState->setObjectName(QStringLiteral("chordStateLabel"));
    mState->setTextFormat(Qt::PlainText);
    mState->setWordWrap(true);
    layoutOf(body)->addWidget(mState);
    QPushButton* close = pushButton("chordCloseButton", QStringLiteral("Close"));
    QHBoxLayout* last = row({mSave, mCopy});
    last->addStretch(1);
    last->addWidget(close);
    layoutOf(body)->addLayout(last);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
}

// ---------------------------------------------------------------- what is written

void ChordToFileDialog::listSlots()
{
    QList<int> slotsNow = mSources.fullSlots();
    QList<int> shown;
    for (int i = 0; i < mSlot->count(); ++i)
        shown.append(mSlot->itemData(i).toInt());
    if (shown == slotsNow)
        return;
    const QSignalBlocker quiet(mSlot);
    const QVariant chosen = mSlot->currentData();
    mSlot->clear();
    for (const int slot : slotsNow)
        mSlot->addItem(slottexts::name(slot), slot);
    if (mSlot->findData(chosen) >= 0)
        mSlot->setCurrentIndex(mSlot->findData(chosen));
}

void ChordToFileDialog::listPresets()
{
    const QSignalBlocker quiet(mPreset);
    const QString chosen = mPreset->currentData().toString();
    mPreset->clear();
    const ChordPresets presets(app::settings()->lastDirPath);
    for (const QString& bank : presets.banks()) {
        for (const QString& preset : presets.presets(bank))
            mPreset->addItem(bank + QStringLiteral(" / ") + preset, presets.presetPath(bank, preset));
    }
    if (mPreset->findData(chosen) < 0 && QFileInfo::exists(chosen))
        mPreset->addItem(QFileInfo(chosen).completeBaseName(), chosen);
    mPreset->setCurrentIndex(qMax(mPreset->findData(chosen), mPreset->count() > 0 ? 0 : -1));
}

void ChordToFileDialog::browsePreset()
{
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Open a preset"), app::settings()->lastDirPath,
                                     QStringLiteral("Presets (*.btoc);;All files (*)"));
    if (path.isEmpty())
        return;
    if (mPreset->findData(path) < 0)
        mPreset->addItem(QFileInfo(path).completeBaseName(), path);
    mPreset->setCurrentIndex(mPreset->findData(path));
    update(true);
}

void ChordToFileDialog::chooseSource()
{
    listSlots();
    mSlot->setVisible(mSource->currentIndex() == Slot);
    mPreset->setVisible(mSource->currentIndex() == Preset);
    mBrowse->setVisible(mSource->currentIndex() == Preset);
    update(true);
}

TuningSet ChordToFileDialog::chosen(QString& reason) const
{
    switch (mSource->currentIndex()) {
    case Slot:
        if (mSlot->currentIndex() >= 0)
            return mSources.slot(mSlot->currentData().toInt());
        reason = QStringLiteral("No chord is stored.");
        return {};
    case Preset:
        if (mPreset->currentIndex() >= 0)
            return mSources.preset(mPreset->currentData().toString(), reason);
        reason = QStringLiteral("There is no preset. \"Open...\" reads one from a file.");
        return {};
    case Balls: reason = QStringLiteral("No ball is enabled."); return mSources.enabledBalls();
    default: reason = QStringLiteral("Nothing sounds."); return mSources.sounding();
    }
}

Format ChordToFileDialog::format() const
{
    constexpr Format formats[] = {Format::Scala, Format::BulkDump, Format::PureData, Format::Text};
    return formats[mFormat->currentIndex()];
}

tuningexport::Range ChordToFileDialog::range() const
{
    return mRange->currentIndex() == 0 ? tuningexport::Range::WithinOctave : tuningexport::Range::AsPlayed;
}

void ChordToFileDialog::update(bool anew)
{
    // A preset is read when it is chosen, not four times a second.
    if (!anew && mSource->currentIndex() == Preset)
        return;
    QString reason;
    const TuningSet set = chosen(reason);
    if (!anew && isSame(set, mSet))
        return;
    mSet = set;
    QByteArray text;
    if (!set.ratios.isEmpty())
        text = tuningexport::write(set, format(), range(), reason);
    const bool isThere = !text.isEmpty();
    if (isThere && format() == Format::Scala)
        text += '\n' + tuningexport::write(set, Format::Keyboard, range(), reason);
    if (isThere && format() == Format::BulkDump)
        text = QByteArrayLiteral("A SysEx message of ") + QByteArray::number(text.size())
               + QByteArrayLiteral(" bytes that tunes all 128 keys.");
    mPreview->setPlainText(firstLines(text));
    mState->setText(isThere ? slottexts::count(set.ratios.size()) : reason);
    mSave->setEnabled(isThere);
    mCopy->setEnabled(!set.ratios.isEmpty());
}

// ---------------------------------------------------------------- saving

void ChordToFileDialog::save()
{
    const QString ending = u'.' + tuningexport::suffix(format());
    const TuningSet set = mSet; // the notes may end while the box is open
    QFileDialog dialog(this, QStringLiteral("Save as"), mFolder, mFormat->currentText());
    dialog.setNameFilter(QStringLiteral("*%1").arg(ending));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite); // asked below, of the name with its ending
    dialog.selectFile(fileNameOf(set.title) + ending);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    mSet = set;
    QString path = dialog.selectedFiles().constFirst();
    if (!path.endsWith(ending, Qt::CaseInsensitive))
        path += ending;
    mFolder = QFileInfo(path).path();
    QStringList paths{path};
    const QString keyboard = path.chopped(ending.size()) + QStringLiteral(".kbm");
    if (format() == Format::Scala)
        paths.append(keyboard);
    paths.removeIf([](const QString& each) { return !QFileInfo::exists(each); });
    if (!paths.isEmpty()
        && !askBeforeLoss(this, QString(),
                          QStringLiteral("Replace %1?").arg(paths.join(QStringLiteral(" and ")))))
        return;
    if (!writeFile(path, format()) || (format() == Format::Scala && !writeFile(keyboard, Format::Keyboard)))
        return;
    mState->setText(
        format() == Format::Scala
            ? QStringLiteral("Saved as %1, and its keyboard as %2.").arg(path, QFileInfo(keyboard).fileName())
            : QStringLiteral("Saved as %1.").arg(path));
}

/// A failure is told by a box too, as of every file (FileTrouble).
bool ChordToFileDialog::writeFile(const QString& path, Format format)
{
    QString reason;
    const QByteArray content = tuningexport::write(mSet, format, range(), reason);
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        reason = QStringLiteral("this is not a file");
    if (reason.isEmpty())
        reason = WholeFile::write(path, content).reason;
    if (!reason.isEmpty())
        mState->setText(QStringLiteral("%1 was not saved: %2.").arg(path, reason));
    return reason.isEmpty();
}

void ChordToFileDialog::copy()
{
    QString reason;
    const QByteArray text = tuningexport::write(mSet, Format::Text, range(), reason);
    if (!text.isEmpty())
        QGuiApplication::clipboard()->setText(QString::fromLatin1(text));
    mState->setText(text.isEmpty() ? reason : QStringLiteral("Ratios, cents and Hz are in the clipboard."));
}

// ---------------------------------------------------------------- events

void ChordToFileDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    listPresets();
    listSlots();
    update(true);
    mLook.start();
}

void ChordToFileDialog::hideEvent(QHideEvent* event)
{
    mLook.stop();
    QDialog::hideEvent(event);
}

void ChordToFileDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        event->ignore();
}
