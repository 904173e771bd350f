#include "model/LatticeSupport.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"

#include <QJsonArray>

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

class LatticeTest : public ::testing::Test, protected LatticeFixture
{
};

class LatticeFile : public LocaleTest, protected LatticeFixture
{
protected:
    static bool init(Orlo& lattice) { return lattice.init(static_cast<PdPlayer*>(nullptr)); }
};
IN_ALL_LOCALES(LatticeFile);

const QString FILE_NAME = u"orlo_v2.json"_s;

const QMap<int, QString> COLORS{{0, u"#b7b7b7"_s},  {1, u"#202020"_s},  {2, u"#5b5b5b"_s},  {3, u"#5173b6"_s},
                                {5, u"#9c0404"_s},  {7, u"#2838d0"_s},  {11, u"#b46110"_s}, {13, u"#710071"_s},
                                {17, u"#077407"_s}, {19, u"#999900"_s}, {23, u"#005b5b"_s}, {29, u"#775c42"_s},
                                {31, u"#2a9d7b"_s}};

void forEachBall(const OrloBall* ball, const std::function<void(const OrloBall*)>& visit)
{
    visit(ball);
    for (const OrloBall* child : ball->children())
        forEachBall(child, visit);
}

/// Path, colour and links of every ball, in the order of the tree.
QStringList described(const Orlo& orlo)
{
    QStringList lines;
    forEachBall(orlo.rootBall(), [&](const OrloBall* ball) {
        lines.append(ball->path().toString() + u' ' + ball->color().name());
        for (auto it = ball->links().begin(); it != ball->links().end(); ++it)
            lines.append(u"  %1 %2 %3"_s.arg(it.key()).arg(it->path.toString(), it->color.name()));
    });
    return lines;
}

TEST_F(LatticeTest, StartsAsOneWhiteBall)
{
    EXPECT_EQ(described(orlo), QStringList{u"/ #ffffff"_s});
    EXPECT_EQ(orlo.transposition(), OrloRatio(1, 1));
    EXPECT_EQ(orlo.baseFrequency(), 440.0F);
    EXPECT_EQ(orlo.lookupColor(3), QColor(Qt::white));
}

TEST_F(LatticeTest, TheDefaultsAreFourRowsLinkedByOctaves)
{
    // One row for each power of 2: its steps of 3 to either side. Every ball beside the row's first
    // one is linked to the same place in the next row up.
    const struct
    {
        QString start;
        int down, up;
    } rows[] = {{u"/-2/-2"_s, 0, 2}, {u"/-2"_s, 1, 2}, {QString(), 3, 2}, {u"/2"_s, 3, 2}};
    QMap<QString, QString> linkOf;
    for (int row = 0; row < 4; ++row) {
        for (int k = -rows[row].down; k <= rows[row].up; ++k) {
            const QString threes = (k < 0 ? u"/-3"_s : u"/3"_s).repeated(qAbs(k));
            const QString path = rows[row].start + threes;
            linkOf.insert(path.isEmpty() ? u"/"_s : path, k != 0 && row < 3 ? rows[row + 1].start + threes : QString());
        }
    }
    ASSERT_EQ(linkOf.size(), 19);

    const LogCatcher log;
    orlo.initWithDefaults();
    EXPECT_EQ(log.count(QtDebugMsg, u"Orlo::initWithDefaults - mPrimeColors:"_s), 1);
    const QList<int> leaves{-31, -29, -23, -19, -17, -13, -11, -7, -5, 5, 7, 11, 13, 17, 19, 23, 29, 31};
    int count = 0;
    forEachBall(orlo.rootBall(), [&](const OrloBall* ball) {
        ++count;
        const QString path = ball->path().toString();
        SCOPED_TRACE(path.toStdString());
        EXPECT_EQ(ball->color().name(), COLORS[ball->lastStep()]);
        QList<int> steps = ball->children().keys();
        steps.removeIf([](int step) { return qAbs(step) <= 3; });
        if (!linkOf.contains(path)) {
            EXPECT_TRUE(qAbs(ball->path().toList().last()) > 3 && ball->children().isEmpty() && ball->links().isEmpty());
            return;
        }
        const QString link = linkOf.take(path);
        EXPECT_EQ(steps, leaves);
        EXPECT_EQ(ball->links().size(), link.isEmpty() ? 0 : 1);
        if (!link.isEmpty()) {
            EXPECT_EQ(ball->links()[2].path.toString(), link);
            EXPECT_EQ(ball->links()[2].color.name(), COLORS[2]);
        }
    });
    EXPECT_EQ(count, 361);
    EXPECT_TRUE(linkOf.isEmpty()) << linkOf.keys().join(u' ').toStdString();
    EXPECT_EQ(orlo.ballMap().size(), 361);
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(1, 1)), orlo.rootBall());
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(8, 27)), ball("/-3/-3/-3"));
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(279, 256)), ball("/-2/-2/3/3/31")); // 1/4 * 9/4 * 31/16
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(25, 16)), nullptr);

    orlo.onTransposed(OrloRatio(3, 2), 3);
    EXPECT_EQ(orlo.ballMap().size(), 361);
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(3, 2)), orlo.rootBall());
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(1, 1)), ball("/-3"));
}

TEST_F(LatticeTest, OfTwoBallsWithOnePitchTheLaterIsFound)
{
    // In the tree's order a ball comes before its children, and the children by ascending number:
    // -5 before -3 and 5 before 11, which is neither the order of the file nor of the texts.
    readRoot(R"({"children": {
        "-3": {"children": {"-5": {}}}, "-5": {"children": {"-3": {}}},
        "11": {"children": {"5": {}}},  "5": {"children": {"11": {}}},
        "3":  {"children": {"-3": {}}}}})");
    EXPECT_EQ(orlo.ballMap().size(), 8); // eleven balls, three pitches of which come twice
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(1, 1)), ball("/3/-3"));
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(8, 15)), ball("/-3/-5"));
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(55, 32)), ball("/11/5"));

    orlo.onNoteToggled(OrloRatio(1, 1), true);
    EXPECT_TRUE(ball("/3/-3")->isPlaying());
    EXPECT_FALSE(orlo.rootBall()->isPlaying());
}

TEST_F(LatticeTest, NotesAndNodesReachTheBallOrElseTheStack)
{
    orlo.initWithDefaults();
    takeSaid();
    const OrloRatio third(5, 4);
    const OrloRatio stray(25, 16);
    const struct
    {
        void (Orlo::*slot)(OrloRatio, bool);
        bool (OrloBall::*flag)() const;
        QStringList strayOn, strayOff;
    } rows[] = {
        {&Orlo::onNoteToggled, &OrloBall::isPlaying,
         {u"add 25/16"_s, u"toggle 25/16 on"_s, u"show card 25/16"_s}, {u"toggle 25/16 off"_s, u"hide card 25/16"_s}},
        {&Orlo::onNodeSelected, &OrloBall::isSelected, {u"select 25/16 on"_s}, {u"select 25/16 off"_s}},
        {&Orlo::onNodeHold, &OrloBall::isHold, {u"hold 25/16 on"_s}, {u"hold 25/16 off"_s}},
        {&Orlo::onNodeAltered, &OrloBall::isAltered, {u"alter 25/16 on"_s}, {u"alter 25/16 off"_s}},
    };
    for (const auto& row : rows) {
        (orlo.*row.slot)(third, true);
        EXPECT_TRUE((ball("/5")->*row.flag)());
        (orlo.*row.slot)(third, false);
        (orlo.*row.slot)(third, false); // was not there any more
        EXPECT_FALSE((ball("/5")->*row.flag)());
        EXPECT_EQ(takeSaid(), QStringList());
        (orlo.*row.slot)(stray, true);
        EXPECT_EQ(takeSaid(), row.strayOn);
        (orlo.*row.slot)(stray, false);
        EXPECT_EQ(takeSaid(), row.strayOff);
    }
    EXPECT_TRUE(orlo.playingRatios().isEmpty());
    orlo.buildBallMap();
    EXPECT_EQ(takeSaid(), QStringList{u"reset"_s}) << "nothing is left in any of the four sets";

    orlo.onRemoveNodeInStack(stray);
    orlo.afterMemoryRecall();
    EXPECT_EQ(takeSaid(), (QStringList{u"remove 25/16"_s, u"show nodes"_s}));
}

TEST_F(LatticeTest, MarksMoveWithTheirPitchesOnARebuild)
{
    orlo.initWithDefaults();
    const OrloRatio ratio(25, 16);
    orlo.onNoteToggled(ratio, true);
    orlo.onNodeSelected(ratio, true);
    orlo.onNodeHold(ratio, true);
    orlo.onNodeAltered(ratio, true);
    takeSaid();

    const auto marks = [this] {
        const OrloBall* fifth = ball("/5");
        return QList<bool>{fifth->isPlaying(), fifth->isSelected(), fifth->isHold(), fifth->isAltered()};
    };
    orlo.onTransposed(OrloRatio(5, 4), 5); // now the ball /5 has the pitch
    EXPECT_EQ(takeSaid(), (QStringList{u"reset"_s, u"hide card 25/16"_s, u"changed"_s}));
    EXPECT_EQ(marks(), QList<bool>(4, true));

    orlo.onTransposed(OrloRatio(1, 1), 0);
    EXPECT_EQ(takeSaid(), (QStringList{u"reset"_s, u"add 25/16"_s, u"toggle 25/16 on"_s, u"show card 25/16"_s,
                                       u"add 25/16"_s, u"select 25/16 on"_s, u"add 25/16"_s, u"hold 25/16 on"_s,
                                       u"add 25/16"_s, u"alter 25/16 on"_s, u"changed"_s}));
    EXPECT_EQ(marks(), QList<bool>(4, false));
}

TEST_F(LatticeTest, BallsReportChangesOnly)
{
    OrloBall* root = orlo.rootBall();
    QList<bool> seen;
    for (const auto signal : {&OrloBall::playingChanged, &OrloBall::selectedChanged, &OrloBall::holdChanged,
                              &OrloBall::alteredChanged, &OrloBall::enabledChanged})
        QObject::connect(root, signal, [&seen](bool on) { seen.append(on); });
    for (const bool on : {true, true, false, false}) {
        root->setPlaying(on);
        root->setSelected(on);
        root->setHold(on);
        root->setAltered(on);
    }
    EXPECT_EQ(seen, QList<bool>(4, true) + QList<bool>(4, false));
    root->setEnabled(true);
    root->togglePlaying();
    EXPECT_EQ(seen.size(), 9);
    EXPECT_TRUE(root->isPlaying());
}

TEST_F(LatticeTest, LeavesOfAFullPathKeepIt)
{
    OrloBall full(OrloPath(u"/3/3/3/3/3/3"_s), Qt::white, orlo.rootBall());
    orlo.addLeaf(&full, 5);
    for (const OrloBall* leaf : full.children())
        EXPECT_EQ(leaf->path(), full.path());
}

TEST_P(LatticeFile, IsMadeOnceAndReadsBackTheSame)
{
    ASSERT_TRUE(init(orlo));
    const QByteArray bytes = home.read(FILE_NAME);
    const QJsonObject json = QJsonDocument::fromJson(bytes).object();
    QList<int> primes;
    for (const QJsonValue& entry : json[u"colors"_s].toArray()) {
        primes.append(entry[u"prime"_s].toInt(-1));
        EXPECT_EQ(entry[u"color"_s].toString(), COLORS[primes.last()]);
    }
    EXPECT_EQ(primes, COLORS.keys());
    const QJsonObject down = json[u"root"_s][u"children"_s][u"-3"_s].toObject();
    EXPECT_EQ(down[u"links"_s].toObject(), (QJsonObject{{u"2"_s, u"/2/-3"_s}}));
    EXPECT_EQ(down[u"children"_s][u"-31"_s].toObject(), QJsonObject()) << "a leaf has neither key";

    Orlo second;
    ASSERT_TRUE(init(second));
    EXPECT_EQ(described(second), described(orlo));
    EXPECT_EQ(second.ballMap().size(), 361);
    ASSERT_TRUE(second.save());
    EXPECT_EQ(home.read(FILE_NAME), bytes);

    ASSERT_TRUE(QFile::remove(home.path(FILE_NAME)));
    second.term();
    EXPECT_FALSE(QFile::exists(home.path(FILE_NAME))) << "nothing is written at exit";
}

TEST_P(LatticeFile, WithoutColorsIsWhite)
{
    home.write(FILE_NAME, R"({"root": {"children": {"5": {"links": {"2": "/3/31"}}}}, "other": 1})");
    ASSERT_TRUE(init(orlo));
    EXPECT_EQ(described(orlo), (QStringList{u"/ #ffffff"_s, u"/5 #ffffff"_s, u"  2 /3/31 #ffffff"_s}));
}

TEST_P(LatticeFile, ASyntaxErrorIsReported)
{
    home.write(FILE_NAME, R"({"root": )");
    const LogCatcher log;
    EXPECT_FALSE(init(orlo));
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_EQ(log.lines()[0].type, QtCriticalMsg);
    const QString start = u"Couldn't parse file %1. JSON error: "_s.arg(home.path(FILE_NAME));
    EXPECT_TRUE(log.lines()[0].text.startsWith(start)) << log.lines()[0].text.toStdString();
    EXPECT_GT(log.lines()[0].text.size(), start.size());
    EXPECT_EQ(home.read(FILE_NAME), R"({"root": )") << "the user's file is left for the user";
}

TEST_F(LatticeTest, OddFilesDoNoHarm)
{
    const QByteArray nested = QByteArray(R"({"children": {"3": )").repeated(400) + "{}" + QByteArray("}}").repeated(400);
    const struct
    {
        QByteArray json;
        int balls;
    } rows[] = {
        {"[]", 1},
        {R"({"root": [], "colors": {}})", 1},
        {R"({"root": {"children": [1], "links": 5}})", 1},
        {R"({"root": {"children": {"3": null, "5": 7}, "links": {"2": 5, "x": "/4"}}})", 3},
        {R"({"root": {"children": {"abc": {}, "-2147483648": {}, "99999999999": {}, "200": {}}}})", 4}, // two keys are 0
        {R"({"colors": [5, {}, {"prime": 1e300, "color": "#010203"}, {"prime": 3}, {"prime": "3", "color": "no"}]})", 1},
        {R"({"root": )" + nested + '}', 401},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.json.left(100).toStdString());
        home.write(FILE_NAME, row.json);
        Orlo lattice;
        ASSERT_TRUE(lattice.init(static_cast<PdPlayer*>(nullptr)));
        int count = 0;
        forEachBall(lattice.rootBall(), [&count](const OrloBall* ball) {
            ++count;
            EXPECT_LE(ball->path().length(), 6);
        });
        EXPECT_EQ(count, row.balls);
        for (const int prime : {0, 3, -3, std::numeric_limits<int>::min()})
            EXPECT_EQ(lattice.lookupColor(prime), QColor(Qt::white));
        for (const bool on : {false, true})
            lattice.onPrimeEnabledToggled(3, on);
    }
}

} // namespace
