#include "ui/panel/MessageBoxes.h"

#include <QCoreApplication>
#include <QMessageBox>

bool askYesOrNo(QWidget* parent, const QString& title, const QString& question)
{
    return QMessageBox::question(parent, title, question, QMessageBox::Yes | QMessageBox::No)
           == QMessageBox::Yes;
}

bool askBeforeLoss(QWidget* parent, const QString& title, const QString& question)
{
    QMessageBox box(QMessageBox::Question, title, question, QMessageBox::Yes | QMessageBox::No, parent);
    box.setTextFormat(Qt::PlainText); // a bank or preset may have any name
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

void showNotice(QWidget* parent, const QString& text)
{
    QMessageBox box(QMessageBox::Information, QCoreApplication::applicationName(), text, QMessageBox::Ok,
                    parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

void showWarning(QWidget* parent, const QString& text)
{
    QMessageBox::warning(parent, QCoreApplication::applicationName(), text, QMessageBox::Ok);
}
