#include "ui/panel/TransposeButton.h"

#include "app/Accessors.h"
#include "model/Orlo.h"
#include "model/OrloPath.h"
#include "sound/PdPlayer.h"
#include "ui/hints/ControlHints.h"
#include "ui/panel/PrimeStepText.h"
#include "ui/panel/PrimeToggleButton.h"

#include <QLabel>
#include <QPainter>

namespace {

constexpr int HOVER_FACTOR = 116;
constexpr double CORNER_RADIUS = 3.0;

OrloRatio ratioOfStep(int step)
{
    return OrloPath(static_cast<signed char>(step)).toRatio();
}

QPolygonF triangle(const QRectF& area, bool left)
{
    const double size = area.width() / 2;
    const double x = area.left() + (area.width() - size) * 0.5;
    const double y = area.top() + (area.height() - size) * 0.5;
    if (left)
        return {{QPointF(x + size, y), QPointF(x + size, y + size), QPointF(x, y + size * 0.5)}};
    return {{QPointF(x, y), QPointF(x + size, y + size * 0.5), QPointF(x, y + size)}};
}

} // namespace

TransposeButton::TransposeButton(int step, QLabel* label, QWidget* parent)
    : QToolButton(parent)
    , mStep(step)
    , mLabel(label)
    , mEvent(OrloEvent::TransposeByPrimeStep, static_cast<float>(step))
{
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(QStringLiteral("Transpose %1 by %2").arg(step < 0 ? u"down" : u"up").arg(qAbs(step)));
    connect(this, &QAbstractButton::clicked, this, &TransposeButton::onTransposeClicked);
    connect(app::orlo(), &Orlo::transposeOrBaseFrequencyChanged, this, &TransposeButton::onTransposeChanged);
    onTransposeChanged();
    showHint();
}

void TransposeButton::showHint()
{
    QString text = hints::text(isEnabled() ? "transposeArrow" : "transposeArrowGone");
    if (isEnabled())
        text = text.arg(mStep > 0 ? QStringLiteral("up") : QStringLiteral("down"), primeStepText(qAbs(mStep)),
                        mStep > 0 ? QStringLiteral("Right") : QStringLiteral("Left"));
    setToolTip(hints::inLines(text));
}

void TransposeButton::onTransposeClicked()
{
    if (app::orlo()->canTransposeTo(ratioOfStep(mStep)))
        app::player()->queueEventGui(&mEvent);
}

void TransposeButton::onTransposeChanged()
{
    const Orlo* orlo = app::orlo();
    const bool wasEnabled = isEnabled();
    setDisabled(!orlo->canTransposeTo(ratioOfStep(mStep)));
    if (isEnabled() != wasEnabled)
        showHint();

    int sum = 0;
    for (const int step : orlo->transposeSteps()) {
        if (qAbs(step) == qAbs(mStep))
            sum += step;
    }
    mCount = sum / qAbs(mStep);

    QString text;
    if (mStep > 0 && mCount > 0)
        text = QStringLiteral("%1%2").arg(QLatin1Char('+')).arg(mCount);
    else if (mStep < 0 && mCount < 0)
        text = QStringLiteral("%1").arg(mCount);
    mLabel->setText(text);
    update();
}

TransposeButton::Look TransposeButton::currentLook() const
{
    Look look{palette().color(QPalette::Active, QPalette::Window),
              palette().color(QPalette::Active, QPalette::WindowText), Qt::black};
    if (isDown()) {
        std::swap(look.background, look.foreground);
        look.outline = Qt::transparent;
        look.rectangle = true;
        return look;
    }
    if (mCount != 0 && (mCount > 0) == (mStep > 0))
        look.foreground = PrimeToggleButton::primeColor(mStep);
    if (underMouse()) {
        look.foreground = look.foreground.lighter(HOVER_FACTOR);
        look.outline = Qt::transparent;
        look.rectangle = true;
    }
    return look;
}

void TransposeButton::paintEvent(QPaintEvent*)
{
    if (!isEnabled())
        return;
    const Look look = currentLook();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (look.rectangle) {
        painter.setPen(Qt::transparent);
        painter.setBrush(look.background);
        painter.drawRoundedRect(contentsRect(), CORNER_RADIUS, CORNER_RADIUS);
    }
    painter.setPen(look.outline);
    painter.setBrush(look.foreground);
    painter.drawPolygon(triangle(contentsRect(), mStep < 1));
}
