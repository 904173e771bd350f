#include "update/SingleMessageBox.h"

SingleMessageBox::~SingleMessageBox()
{
    close();
}

void SingleMessageBox::close()
{
    delete mBox;
}

QString SingleMessageBox::h3(const QString& plainText)
{
    return QStringLiteral("<h3>%1</h3>").arg(plainText.toHtmlEscaped());
}

void SingleMessageBox::show(const Content& content, std::function<void(QMessageBox::StandardButton)> answered)
{
    close();
    mBox = new QMessageBox(content.icon, content.title, content.text, content.buttons);
    mBox->setWindowFlags(Qt::Tool | Qt::WindowStaysOnTopHint);
    mBox->setTextFormat(Qt::RichText);
    mBox->setInformativeText(content.informative);
    mBox->setDefaultButton(content.standard);
    mBox->setModal(false);
    mBox->setAttribute(Qt::WA_DeleteOnClose);
    mBox->setAttribute(Qt::WA_QuitOnClose, false); // the program ends with its main window
    QObject::connect(mBox, &QMessageBox::finished, mBox, [this, answered](int result) {
        mBox = nullptr; // the answer may open the next one
        if (answered)
            answered(static_cast<QMessageBox::StandardButton>(result));
    });
    mBox->show();
}
