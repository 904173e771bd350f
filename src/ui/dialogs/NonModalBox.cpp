#include "ui/dialogs/NonModalBox.h"

#include <QCoreApplication>

void showNonModalBox(QWidget* parent, QMessageBox::Icon icon, const QString& text)
{
    auto* box = new QMessageBox(icon, QCoreApplication::applicationName(), text, QMessageBox::Ok, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText); // a device may have any name
    box->setModal(false);
    box->setAttribute(Qt::WA_ShowWithoutActivating); // the keys go on playing
    box->show();
}
