#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class DiagnosticsDialog;
}

/// A developer's aid: shows the log lines that the filter of the command line lets through, from
/// its construction on, whether it is on the screen or not. No control opens it.
class DiagnosticsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit DiagnosticsDialog(QWidget* parent);
    ~DiagnosticsDialog() override;

public slots:
    /// [gui] Lines of other threads arrive queued.
    void onMessage(const QString& text);

private:
    std::unique_ptr<Ui::DiagnosticsDialog> ui;
    QMetaObject::Connection mLines;
    bool mAppending = false;
};
