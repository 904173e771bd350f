#include "ui/PrimeToggleButton.h"
#include "ui/TransposeButton.h"
#include "ui/TransposeWidget.h"
#include "ui/UiFixture.h"

#include <QGraphicsEffect>
#include <QImage>
#include <QLabel>
#include <QRegularExpression>
#include <QTest>

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
    TransposeButton* up(int row) const { return widget.findChildren<TransposeButton*>().at(2 * (row - 1) + 1); }
    QString downLabel(int row) const { return widget.findChildren<QLabel*>().at(2 * (row - 1))->text(); }
    QString upLabel(int row) const { return widget.findChildren<QLabel*>().at(2 * (row - 1) + 1)->text(); }
    PrimeToggleButton* prime(int row) const { return widget.findChildren<PrimeToggleButton*>().at(row); }
    PrimeToggleButton* reset() const
    {
        return widget.findChild<PrimeToggleButton*>(QStringLiteral("resetButton"));
    }

    /// Long enough for an animated click, then through the player and back.
    QList<PdMessageBuffer::Chunk> settle()
    {
        QTest::qWait(150);
        const QList<PdMessageBuffer::Chunk> commands = drain();
        report();
        return commands;
    }
    void expectOne(const QList<PdMessageBuffer::Chunk>& commands, int type, float value)
    {
        ASSERT_EQ(commands.size(), 1);
        EXPECT_EQ(commands[0].type, type);
        EXPECT_EQ(commands[0].value, value);
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

TEST_F(Transpose, RowsStandInTheOrderOfThePrimes)
{
    const int primes[] = {1, 2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31};
    for (int row = 0; row < 12; ++row)
        EXPECT_EQ(prime(row)->text(), QString::number(primes[row]));
    EXPECT_EQ(reset()->text(), QStringLiteral("="));
    EXPECT_EQ(reset()->toolTip(), QStringLiteral("Reset transpose"));
    for (int row = 1; row < 12; ++row) {
        const int x[] = {down(row)->x(), prime(row)->x(), up(row)->x()};
        EXPECT_TRUE(x[0] < x[1] && x[1] < x[2]);
        EXPECT_GT(prime(row)->y(), prime(row - 1)->y());
    }
    TransposeWidget flat;
    flat.init(Qt::Horizontal);
    flat.show();
    const QList<TransposeButton*> arrows = flat.findChildren<TransposeButton*>();
    EXPECT_LT(arrows[1]->y(), arrows[0]->y()) << "up stands above down";
    EXPECT_LT(arrows[0]->x(), arrows[2]->x());
}

TEST_F(Transpose, LabelsCountTheNetStepsOnTheirSide)
{
    EXPECT_FALSE(reset()->isEnabled());
    for (int row = 1; row < 12; ++row)
        EXPECT_TRUE(downLabel(row).isEmpty() && upLabel(row).isEmpty());

    transposeBy({2, 2, -2});
    EXPECT_TRUE(reset()->isEnabled());
    EXPECT_EQ(upLabel(1), QStringLiteral("+1"));
    EXPECT_EQ(downLabel(1), QString());
    transposeBy({-3, -3, 5});
    EXPECT_EQ(downLabel(2), QStringLiteral("-2"));
    EXPECT_EQ(upLabel(2), QString());
    EXPECT_EQ(upLabel(3), QStringLiteral("+1"));
    orlo.onTransposed(OrloRatio(1, 1), 0);
    EXPECT_TRUE(downLabel(2).isEmpty() && upLabel(1).isEmpty() && upLabel(3).isEmpty());
    EXPECT_FALSE(reset()->isEnabled());
}

TEST_F(Transpose, ClicksAndKeysQueueTheSameCommands)
{
    up(3)->click();
    expectOne(drain(), OrloEvent::TransposeByPrimeStep, 5.0F);
    report();
    EXPECT_EQ(orlo.transposeSteps(), QList<int>{5});
    EXPECT_EQ(upLabel(3), QStringLiteral("+1"));

    widget.transposeUp(2);
    expectOne(settle(), OrloEvent::TransposeByPrimeStep, 3.0F);
    widget.transposeDown(11);
    expectOne(settle(), OrloEvent::TransposeByPrimeStep, -31.0F);
    EXPECT_EQ(orlo.transposeSteps(), (QList<int>{5, 3, -31}));
    widget.toggle(4);
    expectOne(settle(), OrloEvent::PrimeEnabledToggle, 7.0F);
    EXPECT_FALSE(prime(4)->isChecked());
    EXPECT_FALSE(ballAt("/2/-7")->isEnabled());
    widget.resetTranspose();
    expectOne(settle(), OrloEvent::TransposeByPrimeStep, 0.0F);
    EXPECT_TRUE(orlo.transposeSteps().isEmpty());

    // Nothing to reset, no arrows at the prime 1, no such rows, primes that cannot be switched.
    widget.resetTranspose();
    widget.transposeUp(0);
    widget.transposeDown(12);
    widget.toggle(-1);
    for (const int row : {0, 1, 2})
        widget.toggle(row);
    EXPECT_TRUE(settle().isEmpty());
}

TEST_F(Transpose, AStepBeyondTheRangeVanishes)
{
    orlo.onBaseFrequencyChanged(12000.0F); // times 2 is above 20 kHz, times 3/2 is not
    EXPECT_FALSE(up(1)->isEnabled());
    EXPECT_TRUE(down(1)->isEnabled());
    EXPECT_TRUE(up(2)->isEnabled());
    EXPECT_EQ(picture(up(1)).pixelColor(9, 11).alpha(), 0) << "a disabled arrow paints nothing";
    widget.transposeUp(1);
    EXPECT_TRUE(settle().isEmpty());

    // A click that comes before the button has heard of the change.
    up(1)->setEnabled(true);
    up(1)->click();
    EXPECT_TRUE(drain().isEmpty());
}

TEST_F(Transpose, AnArrowTakesThePrimesColourOnTheSideOfTheCount)
{
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::yellow);
    palette.setColor(QPalette::WindowText, Qt::cyan);
    for (TransposeButton* button : widget.findChildren<TransposeButton*>())
        button->setPalette(palette);
    // 18 wide: the triangle is 9 by 9, from 4.5 across and 6.5 down.
    const QPoint middle(9, 11);
    const QPoint leftPart(6, 8);  // inside a triangle that points right, outside one that points left
    const QPoint rightPart(11, 8); // the other way round
    EXPECT_EQ(picture(up(8)).pixelColor(middle), QColor(Qt::cyan));
    EXPECT_EQ(picture(up(8)).pixelColor(leftPart), QColor(Qt::cyan));
    EXPECT_NE(picture(up(8)).pixelColor(rightPart + QPoint(1, -1)), QColor(Qt::cyan));
    EXPECT_NE(picture(down(8)).pixelColor(leftPart), QColor(Qt::cyan));

    transposeBy({19, -5});
    const QColor nineteen(0x99, 0x99, 0x00);
    EXPECT_EQ(picture(up(8)).pixel(middle), nineteen.darker(120).rgb());
    EXPECT_EQ(picture(down(8)).pixelColor(middle), QColor(Qt::cyan));
    EXPECT_EQ(picture(down(3)).pixelColor(middle), QColor(0x9c, 0x04, 0x04));
    EXPECT_EQ(picture(up(3)).pixelColor(middle), QColor(Qt::cyan));

    up(8)->setDown(true);
    EXPECT_EQ(picture(up(8)).pixelColor(middle), QColor(Qt::yellow));
    EXPECT_EQ(picture(up(8)).pixelColor(2, 11), QColor(Qt::cyan)) << "on a rectangle of the text colour";
    up(8)->setDown(false);
    up(8)->setAttribute(Qt::WA_UnderMouse);
    EXPECT_EQ(picture(up(8)).pixel(middle), nineteen.darker(120).lighter(116).rgb());
    EXPECT_EQ(picture(up(8)).pixelColor(2, 11), QColor(Qt::yellow));
}

TEST_F(Transpose, PrimeButtonsWearTheirPrimesColours)
{
    const QRegularExpression number(QStringLiteral("[0-9]+(?=[,)])"));
    EXPECT_EQ(prime(3)->styleSheet().replace(number, QStringLiteral("n")).toStdString(),
              "PrimeToggleButton:checked { background-color: rgb(n, n, n); }"
              "PrimeToggleButton { background-color: rgb(n, n, n); }"
              "PrimeToggleButton:checked:hover:!pressed { background-color: rgb(n, n, n); }"
              "PrimeToggleButton:!checked:hover:!pressed { background-color: rgb(n, n, n); }"
              "PrimeToggleButton:pressed, PrimeToggleButton:checked:pressed { background-color: #c4c4bb; }"
              "PrimeToggleButton:disabled { background-color: rgb(n, n, n); }");
    // #9c0404; a third of it; each of the two brightened by its factor. #999900 over 1.2 for 19.
    const QList<double> five{156, 4, 4, 52, 1.3, 1.3, 181, 4.6, 4.6, 72.8, 1.9, 1.9, 156, 4, 4};
    const QList<double> nineteen{127.5, 127.5, 0, 42.5, 42.5, 0, 147.9, 147.9, 0, 59.5, 59.5, 0, 127.5, 127.5, 0};
    for (const int row : {3, 8}) {
        const QList<double>& expected = row == 3 ? five : nineteen;
        QRegularExpressionMatchIterator found = number.globalMatch(prime(row)->styleSheet());
        for (const double component : expected)
            EXPECT_NEAR(found.next().captured().toInt(), component, 1.0) << row;
    }

    for (const int row : {0, 1, 2})
        EXPECT_FALSE(prime(row)->isEnabled() || prime(row)->isCheckable());
    for (int row = 3; row < 12; ++row)
        EXPECT_TRUE(prime(row)->isEnabled() && prime(row)->isChecked());
    // With a border, as the program's style sheet gives it, the ground is flat.
    widget.setStyleSheet(QStringLiteral("PrimeToggleButton { border: 1px solid black; }"));
    prime(1)->setFixedSize(40, 30);
    EXPECT_EQ(picture(prime(1)).pixel(8, 15), qRgb(0x5b, 0x5b, 0x5b)) << "disabled in its full colour";
    prime(3)->setFixedSize(40, 30);
    prime(3)->setChecked(false);
    EXPECT_EQ(qRed(picture(prime(3)).pixel(8, 15)), 52);
}

TEST_F(Transpose, OneRowIsHighlighted)
{
    widget.highlight(1, true);
    EXPECT_TRUE(prime(1)->graphicsEffect()->isEnabled());
    widget.highlight(1, false);
    widget.highlight(2, true);
    transposeBy({3});
    EXPECT_FALSE(prime(1)->graphicsEffect()->isEnabled());
    EXPECT_TRUE(prime(2)->graphicsEffect()->isEnabled()) << "a transposition leaves it lit";
    widget.highlight(12, true);
    widget.highlight(-1, true);
    transposeBy({3});
    EXPECT_TRUE(prime(2)->graphicsEffect()->isEnabled());
}

} // namespace
