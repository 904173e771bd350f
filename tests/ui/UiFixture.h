#pragma once

#include "app/Accessors.h"
#include "app/Settings.h"
#include "app/StatusNotes.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "sound/PdMessageBuffer.h"
#include "sound/PdPlayer.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloStrutWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/OrloWidget.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGraphicsEllipseItem>
#include <QGraphicsScene>
#include <QPen>

/// The default lattice and a player without a patch, joined as in the program. The audio thread is
/// this one: drain() plays its part.
class UiFixture : public ::testing::Test
{
protected:
    UiFixture();
    ~UiFixture() override;

    /// Lets the player read its commands, and gives them. What it reports arrives with report().
    QList<PdMessageBuffer::Chunk> drain();
    /// The same as one text, "type value ratio" of each or, of a ball's note, "0 value path".
    std::string said();
    /// Delivers queued signals.
    static void report() { QCoreApplication::processEvents(); }

    OrloBall* ballAt(const char* path) const;
    /// As the player would report it after these steps.
    void transposeBy(const QList<int>& steps);

    Settings settings;
    StatusNotes notes;
    Orlo orlo;
    PdPlayer player;

private:
    PdMessageBuffer mProbe;
};

/// The program's style sheet while this lives: the look decides how much room controls and cards take.
class ProgramLook
{
public:
    ProgramLook();
    ~ProgramLook();
};

/// What a test wants to know of the items on one page.
namespace scene {

OrloBallWidget* ballAt(const OrloView& view, const char* path);
/// The five circles of a ball, of the lattice or free, from the lowest to the highest.
struct Circles
{
    QGraphicsEllipseItem* altered;
    QGraphicsEllipseItem* selected;
    QGraphicsEllipseItem* glow;
    QGraphicsEllipseItem* main;
    QGraphicsEllipseItem* hold;
};
Circles circlesOf(const QGraphicsItem* ball);
QList<OrloStrutWidget*> struts(const OrloView& view);
/// In the direction of the tree or link; null: none.
OrloStrutWidget* strutBetween(const OrloView& view, const char* from, const char* to);
/// The ball's centre on the viewport.
QPoint centreOf(const OrloView& view, const char* path);

/// One click of the mouse on the view, at this point of the viewport.
void click(QGraphicsView& view, QPoint point, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
           Qt::MouseButton button = Qt::LeftButton);
void mouse(QGraphicsView& view, QEvent::Type type, QPoint point, Qt::MouseButton button,
           Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
void wheel(QGraphicsView& view, QPointF point, int turn, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

} // namespace scene
