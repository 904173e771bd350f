#include "ui/panel/TransposeWidget.h"
#include "support/Waiting.h"
#include "ui/UiFixture.h"
#include "ui/panel/PrimeToggleButton.h"
#include "ui/panel/TransposeButton.h"

#include <QGraphicsEffect>
#include <QImage>
#include <QLabel>

#include <algorithm>
#include <functional>
#include <string>

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
    TransposeButton* down(int row) const { return widget.findChildren<TransposeButton*>().at(2 * row - 2); }
    TransposeButton* up(int row) const { return widget.findChildren<TransposeButton*>().at(2 * row - 1); }
    /// Of both sides, "-2|" or "|+1".
    std::string labels(int row) const
    {
        const QList<QLabel*> all = widget.findChildren<QLabel*>();
        return (all.at(2 * row - 2)->text() + u'|' + all.at(2 * row - 1)->text()).toStdString();
    }
    PrimeToggleButton* prime(int row) const { return widget.findChildren<PrimeToggleButton*>().at(row); }
    bool canReset() const { return widget.findChild<QWidget*>(QStringLiteral("resetButton"))->isEnabled(); }

    /// Until no animated click is under way, then through the player and back.
    std::string settle()
    {
        const QList<QAbstractButton*> buttons = widget.findChildren<QAbstractButton*>();
        EXPECT_TRUE(waitUntil(
            [&] { return std::ranges::none_of(buttons, [](const auto* each) { return each->isDown(); }); }));
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
    orlo.onTransposed(OrloRatio(1, 1), 0);
    EXPECT_FALSE(canReset());
    EXPECT_EQ(labels(1) + labels(2), "||");
}

TEST_F(Transpose, ClicksAndKeysQueueTheSameCommands)
{
    const std::tuple<std::function<void()>, const char*, QList<int>> rows[] = {
        {[&] { up(3)->click(); }, "15 5 0/1", {5}},
        {[&] { widget.transposeUp(2); }, "15 3 0/1", {5, 3}},
        {[&] { widget.transposeDown(11); }, "15 -31 0/1", {5, 3, -31}},
        {[&] { widget.toggle(4); }, "23 7 0/1", {5, 3, -31}},
        {[&] { widget.resetTranspose(); }, "15 0 0/1", {}},
    };
    for (const auto& [act, command, steps] : rows) {
        act();
        EXPECT_EQ(settle(), command);
        EXPECT_EQ(orlo.transposeSteps(), steps);
    }
    EXPECT_FALSE(prime(4)->isChecked());

    // Nothing to reset, no arrows at the prime 1, no such rows, primes that cannot be switched.
    widget.resetTranspose();
    widget.transposeUp(0);
    widget.transposeDown(12);
    for (const int row : {-1, 0, 1, 2})
        widget.toggle(row);
    EXPECT_EQ(settle(), "");

    for (const auto& [row, on] : {std::pair(1, true), {1, false}, {2, true}, {12, true}})
        widget.highlight(row, on);
    transposeBy({3});
    for (const int row : {1, 2})
        EXPECT_EQ(prime(row)->graphicsEffect()->isEnabled(), row == 2) << "a transposition leaves it lit";
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
    palette.setColor(QPalette::WindowText, plain);
    for (TransposeButton* button : widget.findChildren<TransposeButton*>())
        button->setPalette(palette);
    // 18 wide: the triangle is 9 by 9, from 4.5 across and 6.5 down.
    const auto middle = [](TransposeButton* button) { return picture(button).pixelColor(9, 11); };
    const QPoint leftPart(6, 8); // inside a triangle that points right, outside one that points left
    EXPECT_EQ(picture(up(8)).pixelColor(leftPart), plain);
    EXPECT_NE(picture(down(8)).pixelColor(leftPart), plain);

    transposeBy({-5});
    EXPECT_EQ(middle(down(3)), QColor(0x9c, 0x04, 0x04));
    EXPECT_EQ(middle(up(3)), plain);
}
