#include "ui/panel/MessageBoxes.h"

#include <QCoreApplication>
#include <QMessageBox>

bool askYesOrNo(QWidget* parent, const QString& title, const QString& question)
{
    return QMessageBox::question(parent, title, question, QMessageBox::Yes | QMessageBox::No)
           == QMessageBox::Yes;
}

void showWarning(QWidget* parent, const QString& text)
{
    QMessageBox::warning(parent, QCoreApplication::applicationName(), text, QMessageBox::Ok);
}
