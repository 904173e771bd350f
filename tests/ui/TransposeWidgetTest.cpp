#include "ui/TransposeWidget.h"
#include "ui/PrimeToggleButton.h"
#include "ui/TransposeButton.h"
#include "ui/UiFixture.h"

#include <QGraphicsEffect>
#include <QImage>
#include <QLabel>
#include <QTest>

#include <functional>
#include <string>

namespace {

/// In the order of the rows, from the primes 2 to 31.
class Transpose : public UiFixture
{
protected:
    Transpose()
    {
        widget.init(Qt::Vertical);
        // Arrows of 18 by 22, as the program's style sheet makes them.
        for (TransposeButton* button : widget.findChildren<TransposeButton*>())
            button->setFixedSize(18, 22);
        widget.show();
    }

    /// Row 1 is the prime 2.
    TransposeButton* down(int row) const { return widget.findChildren<TransposeButton*>().at(2 * (row - 1)); }
    TransposeButton* up(int row) const
    {
        return widget.findChildren<TransposeButton*>().at(2 * (row - 1) + 1);
    }
    /// Of both sides, "-2|" or "|+1".
    std::string labels(int row) const
    {
        const QList<QLabel*> all = widget.findChildren<QLabel*>();
        return (all.at(2 * (row - 1))->text() + u'|' + all.at(2 * (row - 1) + 1)->text()).toStdString();
    }
    PrimeToggleButton* prime(int row) const { return widget.findChildren<PrimeToggleButton*>().at(row); }
    bool canReset() const { return widget.findChild<QWidget*>(QStringLiteral("resetButton"))->isEnabled(); }

    /// Long enough for an animated click, then through the player and back.
    std::string settle()
    {
        QTest::qWait(150);
        const std::string commands = said();
        report();
        return commands;
    }
    static QImage picture(QWidget* button)
    {
        QImage image(button->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        button->render(&image, QPoint(), QRegion(), QWidget::RenderFlags()); // no window ground
        return image;
    }

    TransposeWidget widget;
};

TEST_F(Transpose, LabelsCountTheNetStepsOnTheirSide)
{
    EXPECT_FALSE(canReset());
    transposeBy({2, 2, -2, -3, -3, 5});
    EXPECT_TRUE(canReset());
    EXPECT_EQ(labels(1), "|+1");
    EXPECT_EQ(labels(2), "-2|");
    EXPECT_EQ(labels(3), "|+1");
    orlo.onTransposed(OrloRatio(1, 1), 0);
    EXPECT_FALSE(canReset());
    for (int row = 1; row < 12; ++row)
        EXPECT_EQ(labels(row), "|");
}

TEST_F(Transpose, ClicksAndKeysQueueTheSameCommands)
{
    const struct
    {
        std::function<void()> act;
        const char* command;
        QList<int> steps;
    } rows[] = {
        {[&] { up(3)->click(); }, "15 5 0/1", {5}},
        {[&] { widget.transposeUp(2); }, "15 3 0/1", {5, 3}},
        {[&] { widget.transposeDown(11); }, "15 -31 0/1", {5, 3, -31}},
        {[&] { widget.toggle(4); }, "23 7 0/1", {5, 3, -31}},
        {[&] { widget.resetTranspose(); }, "15 0 0/1", {}},
    };
    for (const auto& row : rows) {
        row.act();
        EXPECT_EQ(settle(), row.command);
        EXPECT_EQ(orlo.transposeSteps(), row.steps);
    }
    EXPECT_FALSE(prime(4)->isChecked());
    EXPECT_FALSE(ballAt("/2/-7")->isEnabled());

    // Nothing to reset, no arrows at the prime 1, no such rows, primes that cannot be switched.
    widget.resetTranspose();
    widget.transposeUp(0);
    widget.transposeDown(12);
    for (const int row : {-1, 0, 1, 2})
        widget.toggle(row);
    EXPECT_EQ(settle(), "");
}

TEST_F(Transpose, AStepBeyondTheRangeVanishes)
{
    orlo.onBaseFrequencyChanged(12000.0F); // times 2 is above 20 kHz, times 3/2 is not
    EXPECT_FALSE(up(1)->isEnabled());
    EXPECT_TRUE(down(1)->isEnabled() && up(2)->isEnabled());
    EXPECT_EQ(picture(up(1)).pixelColor(9, 11).alpha(), 0) << "a disabled arrow paints nothing";

    // A click that comes before the button has heard of the change.
    up(1)->setEnabled(true);
    up(1)->click();
    EXPECT_TRUE(drain().isEmpty());
}

TEST_F(Transpose, AnArrowTakesThePrimesColourOnTheSideOfTheCount)
{
    const QColor plain(Qt::cyan);
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::yellow);
    palette.setColor(QPalette::WindowText, plain);
    for (TransposeButton* button : widget.findChildren<TransposeButton*>())
        button->setPalette(palette);
    // 18 wide: the triangle is 9 by 9, from 4.5 across and 6.5 down.
    const auto middle = [](TransposeButton* button) { return picture(button).pixelColor(9, 11); };
    const QPoint leftPart(6, 8); // inside a triangle that points right, outside one that points left
    EXPECT_EQ(picture(up(8)).pixelColor(leftPart), plain);
    EXPECT_NE(picture(down(8)).pixelColor(leftPart), plain);

    transposeBy({19, -5});
    const QColor nineteen = QColor(0x99, 0x99, 0x00).darker(120);
    EXPECT_EQ(middle(up(8)).rgb(), nineteen.rgb());
    EXPECT_EQ(middle(down(8)), plain);
    EXPECT_EQ(middle(down(3)), QColor(0x9c, 0x04, 0x04));
    EXPECT_EQ(middle(up(3)), plain);

    up(8)->setDown(true);
    EXPECT_EQ(middle(up(8)), QColor(Qt::yellow));
    EXPECT_EQ(picture(up(8)).pixelColor(2, 11), plain) << "on a rectangle of the text colour";
}

TEST_F(Transpose, PrimeButtonsWearTheirPrimesColours)
{
    for (int row = 0; row < 12; ++row)
        EXPECT_EQ(prime(row)->isEnabled() && prime(row)->isChecked(), row > 2) << row;
    // With a border, as the program's style sheet gives it, the ground is flat.
    widget.setStyleSheet(QStringLiteral("PrimeToggleButton { border: 1px solid black; }"));
    const auto ground = [this](int row) {
        prime(row)->setFixedSize(40, 30);
        return picture(prime(row)).pixel(8, 15);
    };
    EXPECT_EQ(ground(1), qRgb(0x5b, 0x5b, 0x5b)) << "disabled in its full colour";
    EXPECT_EQ(ground(3), qRgb(0x9c, 0x04, 0x04));
    EXPECT_NEAR(qRed(ground(8)), 0x99 / 1.2, 1.0); // 19 is darkened
    prime(3)->setChecked(false);
    EXPECT_EQ(qRed(ground(3)), 52) << "a third of it";
}

TEST_F(Transpose, OneRowIsHighlighted)
{
    const auto lit = [this](int row) { return prime(row)->graphicsEffect()->isEnabled(); };
    widget.highlight(1, true);
    EXPECT_TRUE(lit(1));
    widget.highlight(1, false);
    widget.highlight(2, true);
    widget.highlight(12, true);
    widget.highlight(-1, true);
    transposeBy({3});
    EXPECT_FALSE(lit(1));
    EXPECT_TRUE(lit(2)) << "a transposition leaves it lit";
}

} // namespace
