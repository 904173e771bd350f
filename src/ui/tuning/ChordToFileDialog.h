#pragma once

#include "tuning/TuningExport.h"
#include "ui/tuning/ChordSources.h"

#include <QDialog>
#include <QTimer>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

/// Writes pitches to files of other programs, or to the clipboard. It follows what sounds and what is chosen,
/// and changes nothing of it. [gui]
class ChordToFileDialog : public QDialog
{
    Q_OBJECT

public:
    /// `sources` must outlive it.
    ChordToFileDialog(const ChordSources& sources, QWidget* parent);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void buildRows();
    void browsePreset();
    void listSlots();
    /// Of banks and presets, by name; one from elsewhere stays.
    void listPresets();
    void chooseSource();
    /// What is chosen, as it is now.
    TuningSet chosen(QString& reason) const;
    tuningexport::Format format() const;
    tuningexport::Range range() const;
    /// Writes the preview anew where the pitches differ from those it shows, or `anew`.
    void update(bool anew);
    void save();
    /// True: written, or a reason is shown.
    bool writeFile(const QString& path, tuningexport::Format format);
    void copy();

    const ChordSources& mSources;
    QString mFolder; // of the file that was written last
    TuningSet mSet;
    QTimer mLook; // at what sounds, while the dialog is open

    QComboBox* mSource;
    QComboBox* mSlot;
    QComboBox* mPreset;
    QPushButton* mBrowse;
    QComboBox* mFormat;
    QComboBox* mRange;
    QPlainTextEdit* mPreview;
    QLabel* mState;
    QPushButton* mSave;
    QPushButton* mCopy;
};
