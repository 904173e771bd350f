#include "update/UpdateFixture.h"

#include <QApplication>
#include <QDesktopServices>
#include <QPushButton>

namespace {
const QString SCHEMES[] = {QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("file"),
                           QStringLiteral("javascript")};
}

AddressCatcher::AddressCatcher()
{
    for (const QString& scheme : SCHEMES)
        QDesktopServices::setUrlHandler(scheme, this, "open");
}

AddressCatcher::~AddressCatcher()
{
    for (const QString& scheme : SCHEMES)
        QDesktopServices::unsetUrlHandler(scheme);
}

UpdateFixture::UpdateFixture()
{
    QCoreApplication::setApplicationVersion(QStringLiteral("2.0.0"));
}

UpdateFixture::~UpdateFixture()
{
    while (QWidget* open = box()) // of an updater that lives on
        delete open;
}

QMessageBox* UpdateFixture::box()
{
    QMessageBox* found = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* each = qobject_cast<QMessageBox*>(window);
        if (!each || !each->isVisible())
            continue;
        EXPECT_EQ(found, nullptr) << "two boxes";
        EXPECT_FALSE(each->isModal());
        found = each;
    }
    return found;
}

QString UpdateFixture::boxText()
{
    const QMessageBox* open = box();
    return open ? open->text() + u'|' + open->informativeText() : QString();
}

QString UpdateFixture::nextBox()
{
    EXPECT_TRUE(soon([] { return box(); }));
    return boxText();
}

bool UpdateFixture::press(QMessageBox::StandardButton button)
{
    if (!box() || !box()->button(button))
        return false;
    QTest::mouseClick(box()->button(button), Qt::LeftButton);
    return true;
}

QStringList UpdateFixture::downloaded() const
{
    return QDir(downloads).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QByteArray UpdateFixture::content(const QString& name) const
{
    QFile file(downloads + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
