#include "ui/harmony/CutLabel.h"

#include "ui/hints/ControlHints.h"

#include <QEvent>
#include <QTextLayout>

CutLabel::CutLabel(int mostLines, QWidget* parent)
    : QLabel(parent)
    , mMostLines(mostLines)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setAlignment(Qt::AlignTop | Qt::AlignLeft);
}

void CutLabel::setWhole(const QString& text)
{
    if (text == mWhole)
        return;
    mWhole = text;
    setAccessibleName(text);
    fit();
}

void CutLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    if (event->oldSize().width() != event->size().width())
        fit();
}

void CutLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fit();
}

void CutLabel::fit()
{
    ensurePolished();
    const int room = contentsRect().width();
    QTextLayout layout(mWhole, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    QTextLine line = layout.createLine();
    while (line.isValid() && lines.size() + 1 < mMostLines) {
        line.setLineWidth(room);
        lines.append(mWhole.mid(line.textStart(), line.textLength()));
        line = layout.createLine();
    }
    const qsizetype rest = line.isValid() ? line.textStart() : mWhole.size();
    layout.endLayout();
    const QString last = mWhole.mid(rest);
    const QString shown = fontMetrics().elidedText(last, Qt::ElideRight, room);
    if (!last.isEmpty())
        lines.append(shown);
    setText(lines.join(u'\n'));
    setToolTip(shown == last ? QString() : hints::inLines(mWhole));
}
