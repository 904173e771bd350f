#include "ui/cards/StaffLines.h"

#include "ui/cards/StaffPosition.h"

namespace {

constexpr float SPACING_OF_HEIGHT = 0.125F; // eight staff spaces, of which the staff has four
constexpr float SPACES_ABOVE_STAFF = 2.0F;
constexpr int LINES = 5;
constexpr int LEDGER_OVERHANG = 4;

} // namespace

float StaffLines::spacing() const
{
    return static_cast<float>(area.height()) * SPACING_OF_HEIGHT;
}

float StaffLines::yOf(float position) const
{
    return (position + SPACES_ABOVE_STAFF) * spacing() + static_cast<float>(area.top());
}

QList<QLine> StaffLines::staff(int width) const
{
    QList<QLine> lines;
    for (int line = 0; line < LINES; ++line) {
        const int y = qRound(yOf(static_cast<float>(line)));
        lines.append(QLine(area.left(), y, area.left() + width, y));
    }
    return lines;
}

QList<QLine> StaffLines::ledgers(float position, const QRect& note) const
{
    QList<QLine> lines;
    const auto add = [&](float at) {
        const int y = qRound(yOf(at));
        lines.append(QLine(note.x() - LEDGER_OVERHANG, y, note.x() + note.width() + LEDGER_OVERHANG, y));
    };
    for (float at = StaffPosition::LOWEST; at <= position; at += 1.0F)
        add(at);
    for (float at = StaffPosition::HIGHEST; at >= position; at -= 1.0F)
        add(at);
    return lines;
}
