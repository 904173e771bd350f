#include "ui/OptionsDialog.h"

#include "ui/WindowFixture.h"

#include <QTabWidget>
#include <QTest>

namespace {
class OptionsTest : public WindowFixture
{
};
} // namespace

TEST_F(OptionsTest, Look)
{
    window->resize(1280, 800);
    window->show();
    press(Qt::Key_Comma, Qt::ControlModifier);
    auto* dialog = window->findChild<OptionsDialog*>();
    ASSERT_TRUE(dialog && dialog->isVisible());
    for (int tab = 0; tab < 4; ++tab) {
        dialog->selectTab(tab);
        QTest::qWait(100);
        dialog->grab().save(QStringLiteral("/tmp/options-%1.png").arg(tab));
    }
}
