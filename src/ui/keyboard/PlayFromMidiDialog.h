#pragma once

#include <QDialog>
#include <QTimer>

class LayoutPage;
class MidiPlaying;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QTabWidget;

/// Chooses the MIDI inputs that play, what their keys play and how. A control acts when it is changed;
/// closing takes nothing back. [gui]
class PlayFromMidiDialog : public QDialog
{
    Q_OBJECT

public:
    /// `playing` must outlive it.
    PlayFromMidiDialog(MidiPlaying& playing, QWidget* parent);

    /// A further page, which the dialog owns.
    void addPage(QWidget* page, const QString& title);

signals:
    void shownChanged(bool shown);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* buildInputPage();
    void listInputs();
    void chooseInput(const QListWidgetItem* item);

    MidiPlaying& mPlaying;
    QTabWidget* mTabs = nullptr;
    QLabel* mCaption = nullptr;
    QListWidget* mInputs = nullptr;
    QTimer mLook; // for inputs that come and go, while the dialog is open
};
