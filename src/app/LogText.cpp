#include "app/LogText.h"

#include <QChar>
#include <QString>

namespace {

bool isHarmless(char32_t c)
{
    const QChar::Category category = QChar::category(c);
    return QChar::isPrint(c) && category != QChar::Separator_Line && category != QChar::Separator_Paragraph;
}

QString escaped(char32_t c)
{
    switch (c) {
    case U'\n': return QStringLiteral("\\n");
    case U'\r': return QStringLiteral("\\r");
    case U'\t': return QStringLiteral("\\t");
    default: break;
    }
    const auto hexadecimal = [c](char16_t letter, int digits) {
        return u'\\' + (letter + QString::number(static_cast<uint>(c), 16).rightJustified(digits, u'0'));
    };
    if (c < 0x100)
        return hexadecimal(u'x', 2);
    return c < 0x10000 ? hexadecimal(u'u', 4) : hexadecimal(u'U', 8);
}

} // namespace

QString logText(const QString& foreign)
{
    QString text;
    text.reserve(foreign.size());
    for (const char32_t c : foreign.toStdU32String()) {
        if (isHarmless(c))
            text += QChar::fromUcs4(c);
        else
            text += escaped(c);
    }
    return text;
}
