#pragma once

#include "ui/tuning/ChordSources.h"

#include <QObject>

class ChordToFileDialog;
class QDialog;
class QWidget;
class ScalaDrop;
class ScalaToChordDialog;

/// The window's part in chords that go to files of other programs and come from them: two dialogs, each made
/// when it first opens, and files dropped on the window. [gui]
class ChordFiles : public QObject
{
    Q_OBJECT

public:
    /// All of these must outlive it. It is the window's child.
    ChordFiles(const PdPlayer& player, StoreAndRecall& memory, const Orlo& orlo, QWidget* window);

    void openOut();
    void openIn();
    /// While they are restricted, no chord is changed.
    void setRestricted(bool restricted);

private:
    ScalaToChordDialog* in();
    void show(QDialog* dialog);

    const ChordSources mSources;
    StoreAndRecall& mMemory;
    const Orlo& mOrlo;
    QWidget* const mWindow;
    ScalaDrop* const mDrop;
    ChordToFileDialog* mOut = nullptr;
    ScalaToChordDialog* mIn = nullptr;
    bool mRestricted = false;
};
