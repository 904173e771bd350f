#include "sound/PatchFolder.h"

#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class PatchFolderTest : public ::testing::Test
{
protected:
    void setModified(const QString& name, const QDateTime& time) const
    {
        QFile file(home.path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
    }
    bool copy(const QString& to, bool overwrite) const
    {
        return PatchFolder::copyFile(home.path(u"source"_s), home.path(to), overwrite);
    }

    const TestHome home;
    const PatchFolder folder{home.configDir().path()};
    const QString resources = QCoreApplication::applicationDirPath();
};

} // namespace

TEST_F(PatchFolderTest, CopiesWhatIsMissingOrOlder)
{
    const QDateTime noon(QDate(2026, 1, 1), QTime(12, 0));
    const std::tuple<qint64, bool, bool> rows[] = {
        // seconds that the target is newer, overwrite, copied
        {60, false, false}, {0, false, false}, {-60, false, true}, {60, true, true}, {0, true, true},
    };
    for (const auto& [newer, overwrite, copied] : rows) {
        home.write(u"source"_s, "new");
        home.write(u"target"_s, "old");
        setModified(u"source"_s, noon);
        setModified(u"target"_s, noon.addSecs(newer));
        EXPECT_TRUE(copy(u"target"_s, overwrite));
        EXPECT_EQ(home.read(u"target"_s), copied ? "new" : "old") << newer << ' ' << overwrite;
    }
    const LogCatcher log;
    EXPECT_FALSE(copy(u"no/folder"_s, true));
    EXPECT_TRUE(log.has(QtCriticalMsg, u"Failed to copy"_s));
    home.configDir().mkpath(u"folder"_s); // no file that could be removed
    EXPECT_FALSE(copy(u"folder"_s, true));
    EXPECT_TRUE(log.has(QtCriticalMsg, u"Failed to delete"_s));
    EXPECT_TRUE(log.has(QtCriticalMsg, u"before copying"_s));
}

TEST_F(PatchFolderTest, HoldsTheMainPatchForTheVoicesItsHelpersAndAVoice)
{
    const LogCatcher log;
    for (const auto& [voices, used] : {std::pair(4, 4), std::pair(5, 128)}) {
        ASSERT_TRUE(folder.install(resources, voices));
        QFile shipped(resources + u"/patches/shell/orlo_main_%1voice.pd"_s.arg(used));
        ASSERT_TRUE(shipped.open(QIODevice::ReadOnly));
        EXPECT_EQ(home.read(u"patch/orlo_main.pd"_s), shipped.readAll()) << voices;
        EXPECT_EQ(log.has(QtWarningMsg, u"There is no main patch for"_s), voices != used);
    }
    // The main patch is always replaced, the others only when they are older.
    home.write(u"patch/orlo_main.pd"_s, "mine");
    home.write(u"patch/orlo_vprep.pd"_s, "mine");
    ASSERT_TRUE(folder.install(resources, 4));
    EXPECT_NE(home.read(u"patch/orlo_main.pd"_s), "mine");
    EXPECT_EQ(home.read(u"patch/orlo_vprep.pd"_s), "mine");

    for (const char* content : {"first", "second"}) {
        home.write(u"chosen.pd"_s, content);
        EXPECT_TRUE(folder.putVoice(home.path(u"chosen.pd"_s)));
        EXPECT_EQ(home.read(u"patch/orlo_voice.pd"_s), content);
    }
    EXPECT_FALSE(folder.putVoice(home.path(u"absent.pd"_s)));
    EXPECT_TRUE(log.has(QtCriticalMsg, u"to the runtime patch location"_s));
}
