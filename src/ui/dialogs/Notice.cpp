#include "ui/dialogs/Notice.h"

#include <QCoreApplication>

void notice::show(QWidget* parent, QMessageBox::Icon icon, const QString& text)
{
    auto* box = new QMessageBox(icon, QCoreApplication::applicationName(), text, QMessageBox::Ok, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText); // a device may have any name
    box->setModal(false);
    box->show();
}
