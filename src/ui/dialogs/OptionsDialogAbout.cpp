// The page about the program.
#include "ui/dialogs/OptionsDialog.h"

#include "ui/dialogs/OptionsPageRows.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QLabel>
#include <QScrollArea>

using namespace optionspage;

QWidget* OptionsDialog::buildAboutPage()
{
    QFile file(QStringLiteral(":/text/about.html"));
    if (!file.open(QIODevice::ReadOnly))
        qCritical() << "The text about the program is missing.";
    auto* text = label(QString::fromUtf8(file.readAll())
                           .replace(QStringLiteral("<version>"), QCoreApplication::applicationVersion()));
    text->setTextFormat(Qt::RichText);
    text->setWordWrap(true);
    text->setOpenExternalLinks(true);
    text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    text->setContentsMargins(PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN, PAGE_MARGIN);
    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(text);
    return scroll;
}
