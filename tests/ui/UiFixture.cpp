#include "ui/UiFixture.h"

#include "model/OrloPath.h"
#include "support/LogCatcher.h"

#include <QApplication>
#include <QFile>
#include <QMouseEvent>
#include <QWheelEvent>

UiFixture::UiFixture()
{
    app::Parts parts;
    parts.orlo = &orlo;
    parts.player = &player;
    parts.settings = &settings;
    parts.statusNotes = &notes;
    app::setParts(parts);
    const LogCatcher quiet;
    orlo.initWithDefaults();
    EXPECT_TRUE(player.init());
    EXPECT_TRUE(mProbe.init());
    PdPlayer::connectLattice(&player, &orlo);
}

ProgramLook::ProgramLook()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QFile sheet(QCoreApplication::applicationDirPath() + QStringLiteral("/style.qss"));
    EXPECT_TRUE(sheet.open(QIODevice::ReadOnly));
    qApp->setStyleSheet(QString::fromLatin1(sheet.readAll()));
}

ProgramLook::~ProgramLook()
{
    qApp->setStyleSheet(QString());
}

UiFixture::~UiFixture()
{
    app::setParts({});
}

QList<PdMessageBuffer::Chunk> UiFixture::drain()
{
    // All buffers read into one area. The probe fills its head with empty commands, so that
    // what the player reads over them can be told apart.
    constexpr int most = 16;
    PdMessageBuffer::ChunkList area;
    area.setSize(0);
    const PdMessageBuffer::Chunk empty;
    for (int i = 0; i < most; ++i)
        mProbe.writeChunk(&empty);
    mProbe.processEvents(area);
    player.processEvents();

    QList<PdMessageBuffer::Chunk> commands;
    for (int i = 0; i < most && area[i]->type != OrloEvent::None; ++i)
        commands.append(*area[i]);
    return commands;
}

std::string UiFixture::said()
{
    QStringList texts;
    for (const PdMessageBuffer::Chunk& chunk : drain()) {
        const QString ratio =
            QStringLiteral("%1/%2").arg(chunk.ratio.numerator()).arg(chunk.ratio.denominator());
        const QString pitch = chunk.type == OrloEvent::NoteToggleByPath ? chunk.path.toString() : ratio;
        texts.append(QStringLiteral("%1 %2 %3").arg(chunk.type).arg(chunk.value).arg(pitch));
    }
    return texts.join(u"; ").toStdString();
}

OrloBall* UiFixture::ballAt(const char* path) const
{
    OrloBall* ball = orlo.rootBall();
    for (const int step : OrloPath(QLatin1StringView(path)).toList())
        ball = ball->childAtPrime(step);
    return ball;
}

void UiFixture::transposeBy(const QList<int>& steps)
{
    for (const int step : steps) {
        OrloRatio ratio(orlo.transposition());
        ratio *= OrloPath(static_cast<signed char>(step)).toRatio();
        orlo.onTransposed(ratio, step);
    }
}

namespace scene {

OrloBallWidget* ballAt(const OrloView& view, const char* path)
{
    const OrloPath wanted{QString(QLatin1StringView(path))};
    for (OrloBallWidget* ball : view.orloWidget()->balls()) {
        if (ball->ball()->path() == wanted)
            return ball;
    }
    return nullptr;
}

Circles circlesOf(const QGraphicsItem* ball)
{
    QList<QGraphicsEllipseItem*> found;
    for (QGraphicsItem* item : ball->childItems()) {
        if (auto* circle = qgraphicsitem_cast<QGraphicsEllipseItem*>(item))
            found.append(circle);
    }
    if (found.size() != 5)
        qFatal("A ball has five circles.");
    return {found[0], found[1], found[2], found[3], found[4]};
}

QList<OrloStrutWidget*> struts(const OrloView& view)
{
    QList<OrloStrutWidget*> found;
    for (QGraphicsItem* item : view.orloWidget()->childItems()) {
        if (auto* strut = qgraphicsitem_cast<OrloStrutWidget*>(item))
            found.append(strut);
    }
    return found;
}

OrloStrutWidget* strutBetween(const OrloView& view, const char* from, const char* to)
{
    for (OrloStrutWidget* strut : struts(view)) {
        if (strut->firstBall() == ballAt(view, from) && strut->secondBall() == ballAt(view, to))
            return strut;
    }
    return nullptr;
}

QPoint centreOf(const OrloView& view, const char* path)
{
    return view.mapFromScene(ballAt(view, path)->scenePos());
}

void mouse(QGraphicsView& view, QEvent::Type type, QPoint point, Qt::MouseButton button,
           Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    QMouseEvent event(type, point, view.viewport()->mapToGlobal(point), button, buttons, modifiers);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void wheel(QGraphicsView& view, QPointF point, int turn, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(point, view.viewport()->mapToGlobal(point), {}, {0, turn}, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void click(QGraphicsView& view, QPoint point, Qt::KeyboardModifiers modifiers, Qt::MouseButton button)
{
    mouse(view, QEvent::MouseButtonPress, point, button, button, modifiers);
    mouse(view, QEvent::MouseButtonRelease, point, button, Qt::NoButton, modifiers);
}

} // namespace scene
