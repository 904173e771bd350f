#include "ui/dialogs/OptionsDialog.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "ui/dialogs/OptionsPageRows.h"
#include "ui/hints/ControlHints.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDebug>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace optionspage;

/// The text lies in a static library, whose resources Qt does not find by itself.
static void initTexts()
{
    Q_INIT_RESOURCE(text);
}

OptionsDialog::OptionsDialog(QWidget* parent)
    : QDialog(parent, Qt::Tool)
{
    initTexts();
    setWindowTitle(QStringLiteral("Options"));
    setFixedSize(450, 540);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    mTabs = new QTabWidget;
    mTabs->addTab(buildOptionsPage(), QStringLiteral("Options"));
    mTabs->addTab(buildRegisterPage(), QStringLiteral("Register"));
    mTabs->addTab(buildUpdatePage(), QStringLiteral("Update"));
    mTabs->addTab(buildAboutPage(), QStringLiteral("About"));
    layout->addWidget(mTabs, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, Qt::Horizontal);
    buttons->setStyleSheet(QStringLiteral("margin: 12px;"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    layout->addWidget(buttons);
    hints::giveAll(this);

    // A shortcut, since a combo box with the focus searches its entries for the key instead of passing it
    // on.
    auto* closing = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma), this);
    connect(closing, &QShortcut::activated, this, &QWidget::close);
    // Before the options are stored for the last time: it ends what is being edited.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &QWidget::hide);
    letStyleForget();
}

OptionsDialog::~OptionsDialog()
{
    // Hiding ends an edit under way while all members still exist.
    hide();
}

/// Qt 6.4's style sheets remember every widget that they were asked about, but notice the end of those
/// only that a sheet may style: some kilobytes stay for each dialog. A blank sheet makes the inner
/// parts of menus and number boxes such widgets.
void OptionsDialog::letStyleForget()
{
    const QString blank = QStringLiteral(" ");
    for (const QComboBox* menu : findChildren<QComboBox*>())
        menu->view()->parentWidget()->setStyleSheet(blank);
    for (const QAbstractSpinBox* number : findChildren<QAbstractSpinBox*>())
        number->findChild<QLineEdit*>()->setStyleSheet(blank);
}

QWidget* OptionsDialog::buildOptionsPage()
{
    loadData();
    QWidget* widget = page();
    QVBoxLayout* layout = layoutOf(widget);
    addVoicesRow(layout);
    QGridLayout* grid = addGrid(layout);
    addDeviceRows(grid);
    addPitchRows(grid);
    addCardRow(layout);
    addGlissandoRows(layout);
    addSwitches(layout);
    layout->addStretch(1);

    showSplitMenus(app::settings()->oneOneMenuSplitOctaves);
    populateOneOneSplitMenu();
    markNote();
    mCentsLabel->setText(mOneOne.centsText());
    return widget;
}

QWidget* OptionsDialog::buildRegisterPage()
{
    QWidget* widget = page();
    auto* text = label(
        QStringLiteral("This build of %1 needs no registration.").arg(QCoreApplication::applicationName()));
    text->setWordWrap(true);
    layoutOf(widget)->addWidget(text);
    layoutOf(widget)->addStretch(1);
    return widget;
}

void OptionsDialog::selectTab(int index)
{
    mTabs->setCurrentIndex(index);
}

void OptionsDialog::rePosition()
{
    move(mSavedPosition);
}

void OptionsDialog::rePosition(QPoint position)
{
    move(position);
}

void OptionsDialog::applyRestrictions(bool restricted)
{
    if (restricted) {
        mMidiDeviceMenu->setCurrentIndex(0);
        mMidiChannelMenu->setCurrentIndex(0);
    } else {
        showMidi();
    }
    for (QWidget* control : std::initializer_list<QWidget*>{mMidiDeviceMenu, mMidiChannelMenu})
        control->setEnabled(!restricted);
    for (QDoubleSpinBox* range : mRangeEdits)
        range->setEnabled(!restricted);
}

void OptionsDialog::keyPressEvent(QKeyEvent* event)
{
    const bool comma = event->key() == Qt::Key_Comma && event->modifiers().testFlag(Qt::ControlModifier);
    if (event->key() == Qt::Key_Escape || comma)
        close();
    else
        event->ignore();
}

void OptionsDialog::closeEvent(QCloseEvent* event)
{
    qDebug() << "Options: position before" << mSavedPosition;
    mSavedPosition = pos();
    emit closedAt(mSavedPosition);
    qDebug() << "Options: position after" << mSavedPosition;
    event->accept();
}
