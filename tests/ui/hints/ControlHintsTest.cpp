#include "ui/hints/ControlHints.h"
#include "ui/WindowFixture.h"
#include "ui/dialogs/OptionsDialog.h"
#include "ui/hints/SliderValueTip.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

class ControlHintsTest : public WindowFixture
{
protected:
    ControlHintsTest()
    {
        window->show();
        for (const char* name : {"glissButton", "glissFineButton"})
            click(name); // show their sliders
        commands();
    }

    static bool isControl(const QWidget* widget)
    {
        if (!widget->isVisible() || qobject_cast<const QScrollBar*>(widget)
            || qobject_cast<const QDialogButtonBox*>(widget->parentWidget()))
            return false;
        return widget->inherits("QAbstractButton") || widget->inherits("QSlider")
               || widget->inherits("QComboBox") || widget->inherits("QAbstractSpinBox");
    }
    /// Says it by more than a sign.
    static bool hasName(const QWidget* control)
    {
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        const bool mustHave = button || control->inherits("QSlider");
        const QString name =
            control->accessibleName().isEmpty() && button ? button->text() : control->accessibleName();
        return !mustHave || std::ranges::count_if(name, [](QChar letter) { return letter.isLetter(); }) > 1;
    }
    static void expectHints(const QWidget* root)
    {
        for (const QWidget* each : root->findChildren<QWidget*>()) {
            if (!isControl(each))
                continue;
            const std::string which =
                each->metaObject()->className() + (' ' + each->objectName().toStdString());
            EXPECT_FALSE(each->toolTip().isEmpty()) << which;
            EXPECT_FALSE(each->toolTip().contains(u'%')) << which << ": a place is not filled";
            EXPECT_TRUE(hasName(each)) << which;
            for (const QString& line : each->toolTip().split(u'\n'))
                EXPECT_LT(line.size(), 70) << which;
        }
    }
    QStringList valuesShown() const
    {
        QStringList shown;
        for (const SliderValueTip* tip : window->findChildren<SliderValueTip*>()) {
            if (tip->isVisible())
                shown.append(tip->text());
        }
        return shown;
    }
};

TEST_F(ControlHintsTest, EveryControlOfWindowAndOptionsSaysWhatItDoes)
{
    expectHints(window.get());
    press(Qt::Key_Comma, Qt::ControlModifier);
    auto* dialog = window->findChild<OptionsDialog*>();
    for (int tab = 0; tab < 4; ++tab) {
        dialog->selectTab(tab);
        expectHints(dialog);
    }
    for (QAction* entry : window->actions()) {
        if (!entry->text().contains(u"hord"_s)) // to a file, and from one
            continue;
        entry->trigger();
        expectHints(window.get());
    }
}

TEST_F(ControlHintsTest, SlidersShowTheirValuesWhileTheyAreHeld)
{
    settings.glissOneRangeCents = 1200;
    settings.glissTwoRangeCents = 100;
    emit player.macroNamesReceived({u"aTTACK"_s});
    report();
    const std::tuple<const char*, int, const char*> rows[] = {
        {"volumeSlider", 70, "50%"},
        {"macroSlider1", 48, "Attack 40%"},
        {"glissSliderBig", 300, "+600 cents"},
        {"glissSliderBig", 200, "0 cents"},
        {"glissFineSliderBig", 199, "-0.5 cents"},
    };
    for (const auto& [name, value, text] : rows) {
        const QWidget* focus = window->focusWidget();
        QTest::mousePress(slider(name), Qt::LeftButton);
        slider(name)->setValue(value);
        EXPECT_EQ(valuesShown(), QStringList(QString::fromLatin1(text)));
        QTest::mouseRelease(slider(name), Qt::LeftButton);
        EXPECT_EQ(valuesShown(), QStringList()) << name;
        EXPECT_TRUE(window->focusWidget() == focus || window->focusWidget() == slider(name));
        slider(name)->setValue(0); // by a key
        EXPECT_EQ(valuesShown(), QStringList()) << name;
    }
    QTest::mousePress(slider("glissSliderBig"), Qt::LeftButton);
    click("glissButton"); // hides it under the finger
    EXPECT_EQ(valuesShown(), QStringList());
}

TEST_F(ControlHintsTest, ADragThatMovesNothingSaysSo)
{
    const QSignalSpy said(&notes, &StatusNotes::said);
    emit slider("glissSliderBig")->sliderMoved(210);
    EXPECT_EQ(said.count(), 1);
    orlo.onNodeSelected(OrloRatio(3, 2), true);
    emit slider("glissFineSliderBig")->sliderMoved(210);
    EXPECT_EQ(said.count(), 1);
}

TEST_F(ControlHintsTest, APressThatDoesNothingSaysWhatItWanted)
{
    const QSignalSpy said(&notes, &StatusNotes::said);
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"an empty chord", [this] { press(Qt::Key_5); }},
        {"no chord to clear", [this] { press(Qt::Key_C, Qt::AltModifier); }},
        {"nothing to select", [this] { press(Qt::Key_A, Qt::AltModifier); }},
        {"nothing selected", [this] { press(Qt::Key_T, Qt::AltModifier); }},
        {"nothing to hold", [this] { press(Qt::Key_H); }},
        {"no preset to save", [this] { press(Qt::Key_S, Qt::ControlModifier); }},
        {"no preset to load", [this] { press(Qt::Key_L, Qt::ControlModifier); }},
        {"not that many patches", [this] { window->patch_by_Index(99); }},
        {"not transposed", [this] { press(Qt::Key_Backspace); }},
        {"a prime that is always on", [this] { press(Qt::Key_X); }},
        {"1/1 above 20 kHz",
         [this] {
             transposeBy({2, 2, 2, 2, 2}); // 14,080 Hz
             press(Qt::Key_Right);
         }},
    };
    qsizetype count = 0;
    for (const auto& [what, act] : rows) {
        act();
        EXPECT_EQ(said.count(), ++count) << what;
        EXPECT_FALSE(said.last().first().toString().isEmpty()) << what;
    }
    press(Qt::Key_Left);
    EXPECT_EQ(said.count(), count) << "what is done needs no word";
}

} // namespace
