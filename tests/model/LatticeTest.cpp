#include "model/LatticeSupport.h"
#include "support/LocaleTest.h"
#include "support/LogCatcher.h"

#include <QJsonArray>

#include <limits>

namespace {

class LatticeTest : public LocaleTest, protected LatticeFixture
{
};

const QString FILE_NAME = u"orlo_v2.json"_s;

const QMap<int, QString> COLORS{
    {0, u"#b7b7b7"_s},  {1, u"#202020"_s},  {2, u"#5b5b5b"_s},  {3, u"#5173b6"_s},  {5, u"#9c0404"_s},
    {7, u"#2838d0"_s},  {11, u"#b46110"_s}, {13, u"#710071"_s}, {17, u"#077407"_s}, {19, u"#999900"_s},
    {23, u"#005b5b"_s}, {29, u"#775c42"_s}, {31, u"#2a9d7b"_s}};

bool init(Orlo& lattice)
{
    return lattice.init(static_cast<PdPlayer*>(nullptr));
}

/// Path, colour and links of a ball and all behind it, in the order of the tree.
QStringList described(const OrloBall* ball)
{
    QString line = ball->path().toString() + u' ' + ball->color().name();
    for (auto it = ball->links().begin(); it != ball->links().end(); ++it)
        line += u" %1 %2 %3"_s.arg(it.key()).arg(it->path.toString(), it->color.name());
    QStringList lines{line};
    for (const OrloBall* child : ball->children())
        lines += described(child);
    return lines;
}

TEST_F(LatticeTest, TheDefaultsAreFourRowsLinkedByOctaves)
{
    // One row for each power of 2: its steps of 3 down and up. Every ball beside the row's first one
    // is linked to the same place in the next row up. All have the leaves.
    const QList<std::tuple<QString, int, int>> rows{
        {u"/-2/-2"_s, 0, 2}, {u"/-2"_s, 1, 2}, {u""_s, 3, 2}, {u"/2"_s, 3, 2}};
    QStringList expected;
    for (int row = 0; row < 4; ++row) {
        const auto& [start, down, up] = rows[row];
        for (int k = -down; k <= up; ++k) {
            const QString threes = (k < 0 ? u"/-3"_s : u"/3"_s).repeated(qAbs(k));
            const QString path = start + threes;
            const int prime = k != 0 ? 3 : start.isEmpty() ? 1 : 2;
            QString line = (path.isEmpty() ? u"/"_s : path) + u' ' + COLORS[prime];
            if (k != 0 && row < 3)
                line += u" 2 "_s + std::get<0>(rows[row + 1]) + threes + u' ' + COLORS[2];
            expected.append(line);
            for (const int leaf : {5, 7, 11, 13, 17, 19, 23, 29, 31}) {
                expected.append(u"%1/%2 %3"_s.arg(path).arg(leaf).arg(COLORS[leaf]));
                expected.append(u"%1/-%2 %3"_s.arg(path).arg(leaf).arg(COLORS[leaf]));
            }
        }
    }
    ASSERT_EQ(expected.size(), 361);
    orlo.initWithDefaults();
    QStringList found = described(orlo.rootBall());
    found.sort();
    expected.sort();
    EXPECT_EQ(found.join(u'\n').toStdString(), expected.join(u'\n').toStdString());

    EXPECT_EQ(orlo.ballMap().size(), 361);
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(279, 256)), ball("/-2/-2/3/3/31")); // 1/4 * 9/4 * 31/16
    EXPECT_EQ(orlo.ballFromRatio(OrloRatio(25, 16)), nullptr);
    orlo.onTransposed(OrloRatio(3, 2), 3);
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
}

TEST_F(LatticeTest, NotesAndNodesReachTheBallOrElseTheStack)
{
    orlo.initWithDefaults();
    takeSaid();
    const OrloRatio stray(25, 16);
    const std::tuple<void (Orlo::*)(OrloRatio, bool), bool (OrloBall::*)() const, const char*, const char*>
        rows[] = {
            {&Orlo::onNoteToggled, &OrloBall::isPlaying, //
             "add 25/16, toggle 25/16 on, show card 25/16", "toggle 25/16 off, hide card 25/16"},
            {&Orlo::onNodeSelected, &OrloBall::isSelected, "select 25/16 on", "select 25/16 off"},
            {&Orlo::onNodeHold, &OrloBall::isHold, "hold 25/16 on", "hold 25/16 off"},
            {&Orlo::onNodeAltered, &OrloBall::isAltered, "alter 25/16 on", "alter 25/16 off"},
        };
    const auto marks = [&](const char* path) {
        int count = 0;
        for (const auto& [slot, flag, strayOn, strayOff] : rows)
            count += (ball(path)->*flag)() ? 1 : 0;
        return count;
    };
    for (const auto& [slot, flag, strayOn, strayOff] : rows) {
        for (const bool on : {true, false, false}) { // the last one was not there any more
            (orlo.*slot)(OrloRatio(5, 4), on);
            EXPECT_EQ((ball("/5")->*flag)(), on);
        }
        EXPECT_EQ(takeSaid(), "");
        (orlo.*slot)(stray, true);
        EXPECT_EQ(takeSaid(), strayOn);
        (orlo.*slot)(stray, false);
        EXPECT_EQ(takeSaid(), strayOff);
    }
    orlo.buildBallMap();
    EXPECT_EQ(takeSaid(), "reset") << "nothing is left in any of the four sets";

    // On a rebuild the marks move with their pitches.
    for (const auto& row : rows)
        (orlo.*std::get<0>(row))(stray, true);
    takeSaid();
    orlo.onTransposed(OrloRatio(5, 4), 5); // now the ball /5 has the pitch
    EXPECT_EQ(takeSaid(), "reset, hide card 25/16, changed");
    EXPECT_EQ(marks("/5"), 4);
    orlo.onTransposed(OrloRatio(1, 1), 0);
    EXPECT_EQ(takeSaid(), "reset, add 25/16, toggle 25/16 on, show card 25/16, add 25/16, select 25/16 on, "
                          "add 25/16, hold 25/16 on, add 25/16, alter 25/16 on, changed");
    EXPECT_EQ(marks("/5"), 0);
}

TEST_F(LatticeTest, IsMadeOnceAndReadsBackTheSame)
{
    ASSERT_TRUE(init(orlo));
    const QByteArray bytes = home.read(FILE_NAME);
    const QJsonObject json = QJsonDocument::fromJson(bytes).object();
    QMap<int, QString> colors;
    for (const QJsonValue& entry : json[u"colors"_s].toArray())
        colors.insert(entry[u"prime"_s].toInt(-1), entry[u"color"_s].toString());
    EXPECT_EQ(colors, COLORS);
    const QJsonObject down = json[u"root"_s][u"children"_s][u"-3"_s].toObject();
    EXPECT_EQ(down[u"links"_s].toObject(), (QJsonObject{{u"2"_s, u"/2/-3"_s}}));
    EXPECT_EQ(down[u"children"_s][u"-31"_s].toObject(), QJsonObject()) << "a leaf has neither key";

    Orlo second;
    ASSERT_TRUE(init(second));
    EXPECT_EQ(described(second.rootBall()), described(orlo.rootBall()));
    EXPECT_EQ(second.ballMap().size(), 361);
    ASSERT_TRUE(second.save());
    EXPECT_EQ(home.read(FILE_NAME), bytes);
    home.write(FILE_NAME, "");
    second.term();
    EXPECT_EQ(home.read(FILE_NAME), "") << "nothing is written at exit";
}

TEST_F(LatticeTest, OddFilesDoNoHarm)
{
    const QByteArray nested =
        QByteArray(R"({"children": {"3": )").repeated(400) + "{}" + QByteArray("}}").repeated(400);
    const std::pair<QByteArray, int> rows[] = {
        // what stands in the file, and the balls it gives
        {"[]", 1},
        {R"({"root": [], "colors": {}})", 1},
        {R"({"root": {"children": [1], "links": 5}})", 1},
        {R"({"root": {"children": {"5": {"links": {"2": "/3/31"}}}}, "other": 1})", 2},
        {R"({"root": {"children": {"3": null, "5": 7}, "links": {"2": 5, "x": "/4"}}})", 3},
        {R"({"root": {"children": {"abc": {}, "-2147483648": {}, "99999999999": {}, "200": {}}}})",
         4}, // two keys are 0
        {R"({"colors": [5, {}, {"prime": 1e300, "color": "#010203"}, {"prime": 3}, {"prime": "3", "color": "no"}]})",
         1},
        {R"({"root": )" + nested + '}', 401},
    };
    for (const auto& [json, balls] : rows) {
        SCOPED_TRACE(json.left(100).toStdString());
        home.write(FILE_NAME, json);
        Orlo lattice;
        ASSERT_TRUE(init(lattice));
        const QStringList lines = described(lattice.rootBall());
        EXPECT_EQ(lines.size(), balls);
        for (const QString& line : lines)
            EXPECT_LE(line.section(u' ', 0, 0).count(u'/'), 6);
        EXPECT_EQ(lines[0].left(9), u"/ #ffffff"_s) << "without colours all is white";
        for (const int prime : {0, 3, -3, std::numeric_limits<int>::min()})
            EXPECT_EQ(lattice.lookupColor(prime), QColor(Qt::white));
        for (const bool on : {false, true})
            lattice.onPrimeEnabledToggled(3, on);
    }
    // One with a syntax error is left for the user.
    home.write(FILE_NAME, R"({"root": )");
    const LogCatcher log;
    EXPECT_FALSE(init(orlo));
    EXPECT_EQ(log.count(QtCriticalMsg, u"Couldn't parse file "_s), 1);
    EXPECT_EQ(home.read(FILE_NAME), R"({"root": )");
}

} // namespace
