#include "ui/tuning/ChordFiles.h"

#include "ui/tuning/ChordToFileDialog.h"
#include "ui/tuning/ScalaDrop.h"
#include "ui/tuning/ScalaToChordDialog.h"

#include <QPoint>
#include <QWidget>

namespace {

// To the upper right corner of the window: below the menu.
constexpr QPoint CORNER(12, 76);

} // namespace

ChordFiles::ChordFiles(const PdPlayer& player, StoreAndRecall& memory, const Orlo& orlo, QWidget* window)
    : QObject(window)
    , mSources(player, memory, orlo)
    , mMemory(memory)
    , mOrlo(orlo)
    , mWindow(window)
    , mDrop(new ScalaDrop(window))
{
    connect(mDrop, &ScalaDrop::dropped, this, [this](const QStringList& paths) {
        in()->take(paths);
        show(in());
    });
}

void ChordFiles::openOut()
{
    if (!mOut)
        mOut = new ChordToFileDialog(mSources, mWindow);
    show(mOut);
}

void ChordFiles::openIn()
{
    show(in());
}

ScalaToChordDialog* ChordFiles::in()
{
    if (!mIn) {
        mIn = new ScalaToChordDialog(mMemory, mOrlo, mWindow);
        mIn->setRestricted(mRestricted);
    }
    return mIn;
}

void ChordFiles::show(QDialog* dialog)
{
    if (!dialog->isVisible()) {
        const QRect window = mWindow->geometry();
        dialog->move(window.right() - dialog->width() - CORNER.x(), window.top() + CORNER.y());
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

void ChordFiles::setRestricted(bool restricted)
{
    mRestricted = restricted;
    mDrop->setEnabled(!restricted);
    if (mIn)
        mIn->setRestricted(restricted);
}
