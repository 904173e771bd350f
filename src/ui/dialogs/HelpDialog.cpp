#include "ui/dialogs/HelpDialog.h"

#include <QCoreApplication>
#include <QScreen>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

constexpr QSize SIZE(620, 640);
constexpr int MOST_LISTED = 3; // more presses than this are shown by the first and the last

QString pressesText(const QStringList& presses)
{
    if (presses.size() > MOST_LISTED)
        return presses.first() + QStringLiteral(" ... ") + presses.last();
    return presses.join(QStringLiteral(", "));
}

QString page(const QList<HelpSection>& sections)
{
    QString html = QStringLiteral("<style>h3 { color: #e8c468; } td { padding: 2px 14px 2px 0px; }</style>");
    for (const HelpSection& section : sections) {
        html += QStringLiteral("<h3>%1</h3><table width='100%'>").arg(section.title.toHtmlEscaped());
        for (const HelpSection::Row& row : section.rows)
            html += QStringLiteral("<tr><td width='36%'><b>%1</b></td><td>%2</td></tr>")
                        .arg(pressesText(row.presses).toHtmlEscaped(), row.effect.toHtmlEscaped());
        html += QStringLiteral("</table>");
    }
    return html;
}

} // namespace

HelpDialog::HelpDialog(const QList<HelpSection>& sections, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("helpDialog"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Help and keys - %1").arg(QCoreApplication::applicationName()));
    auto* text = new QTextBrowser(this);
    text->setObjectName(QStringLiteral("helpText"));
    text->setAccessibleName(QStringLiteral("Help and keys"));
    text->setHtml(page(sections));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    resize(SIZE.boundedTo(screen()->availableSize() * 9 / 10));
}
