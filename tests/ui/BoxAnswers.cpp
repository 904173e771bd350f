#include "ui/BoxAnswers.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

BoxAnswers::BoxAnswers()
{
    startTimer(10);
}

void BoxAnswers::timerEvent(QTimerEvent*)
{
    QWidget* box = QApplication::activeModalWidget();
    if (!box || !box->isVisible())
        return;
    const Answer answer = mAnswers.isEmpty() ? Answer{false, QString()} : mAnswers.takeFirst();
    const auto press = [](QWidget* button) { QTest::mouseClick(button, Qt::LeftButton); };
    if (auto* message = qobject_cast<QMessageBox*>(box)) {
        mShown.append(message->windowTitle() + u'|' + message->text());
        QAbstractButton* button = message->button(answer.accept ? QMessageBox::Yes : QMessageBox::No);
        press(button ? button : message->button(QMessageBox::Ok));
        return;
    }
    auto* line = box->findChild<QLineEdit*>();
    auto* buttons = box->findChild<QDialogButtonBox*>();
    if (!line || !buttons)
        qFatal("An unknown box: %s", box->metaObject()->className());
    if (auto* input = qobject_cast<QInputDialog*>(box))
        mShown.append(input->windowTitle() + u'|' + input->labelText());
    else
        mShown.append(box->windowTitle() + u'|');
    line->clear();
    // The file dialog completes what is typed, with files that come later.
    if (qobject_cast<QFileDialog*>(box))
        line->setText(answer.text);
    else
        QTest::keyClicks(line, answer.text);
    if (!answer.accept)
        press(buttons->button(QDialogButtonBox::Cancel));
    else if (QPushButton* ok = buttons->button(QDialogButtonBox::Ok))
        press(ok);
    else
        press(buttons->button(QDialogButtonBox::Open));
}
