#include "ui/dialogs/DiagnosticsDialog.h"

#include "app/Accessors.h"
#include "app/ApplicationServices.h"
#include "ui_DiagnosticsDialog.h"

#include <QScopedValueRollback>

DiagnosticsDialog::DiagnosticsDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::DiagnosticsDialog>())
{
    ui->setupUi(this);
    setWindowFlags(windowFlags() | Qt::WindowMaximizeButtonHint);
    mLines = app::application()->connectDiagnostics(this);
}

DiagnosticsDialog::~DiagnosticsDialog()
{
    // Lines that are logged while the widgets are deleted must not reach the deleted form.
    disconnect(mLines);
}

void DiagnosticsDialog::onMessage(const QString& text)
{
    // Appending can itself log a line, which would be appended in turn without end.
    if (mAppending)
        return;
    const QScopedValueRollback<bool> appending(mAppending, true);
    ui->textArea->appendPlainText(text);
}
