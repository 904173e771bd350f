#include "scala/ScalaKeyboard.h"
#include "scala/ScalaLines.h"
#include "scala/ScalaScale.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QTemporaryDir>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

template <class Content>
std::optional<Content> readFrom(const QByteArray& text, ScalaError& error)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    return Content::read(buffer, error);
}

/// "description: 9/8 701.955", or "! 5" for a file that is refused for its line 5.
std::string scaleIn(const QByteArray& text)
{
    ScalaError error;
    const auto scale = readFrom<ScalaScale>(text, error);
    if (!scale)
        return error.reason.isEmpty() ? "refused without a reason" : "! " + std::to_string(error.line);
    QString told = scale->description() + u':';
    for (const ScalaPitch& pitch : scale->pitches())
        told += u' ' + pitch.toText();
    return told.toStdString();
}

/// Of each key of a range its pitch above 1/1, "x" where it has none; or as above.
std::string keysIn(const QByteArray& text, const ScalaScale& scale, int from, int to)
{
    ScalaError error;
    const auto keyboard = readFrom<ScalaKeyboard>(text, error);
    if (!keyboard)
        return error.reason.isEmpty() ? "refused without a reason" : "! " + std::to_string(error.line);
    QStringList told;
    for (int key = from; key <= to; ++key) {
        const auto pitch = keyboard->pitchOf(key, scale);
        told.append(pitch ? pitch->toText() : u"x"_s);
    }
    return told.join(u' ').toStdString();
}

/// Endless, for what must be bounded.
class Endless : public QIODevice
{
public:
    Endless(const QByteArray& begin, char rest)
        : mBegin(begin)
        , mRest(rest)
    {
        open(QIODevice::ReadOnly);
    }
    bool isSequential() const override { return true; }
    bool atEnd() const override { return false; }

protected:
    qint64 readData(char* data, qint64 size) override
    {
        for (qint64 i = 0; i < size; ++i, ++mAt)
            data[i] = mAt < mBegin.size() ? mBegin[mAt] : mRest;
        return size;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray mBegin;
    char mRest;
    qint64 mAt = 0;
};

} // namespace

TEST(ScalaFile, ScalesReadAsTheFormatSaysAndFilesAre)
{
    const struct
    {
        QByteArray text;
        const char* expected;
    } cases[] = {
        {"! x.scl\n!\nPlain\n 3\n!\n 9/8\n 701.955\n 2/1\n", "Plain: 9/8 701.955 2/1"},
        {"! x.scl\r\n!\r\nWindows\r\n2\r\n3/2\r\n2\r\n", "Windows: 3/2 2/1"},
        {"Mac\r2\r3/2\r2/1", "Mac: 3/2 2/1"},
        {"remarks\n2\n3 exact\n2 - octave\n", "remarks: 3/1 2/1"},
        {"no last end\n1\n2/1", "no last end: 2/1"},
        {"\n2\n3/2\n2/1\n", ": 3/2 2/1"},
        {"tabs\n\t2\t\n\t3/2\tfifth\n\t2/1 ! octave\n", "tabs: 3/2 2/1"},
        {"blank lines\n\n2\n\n3/2\n  \n2/1\n", "blank lines: 3/2 2/1"},
        {"Fran\xe7ois\n1\n2/1\n", "François: 2/1"},
        {"\xef\xbb\xbf! mark\nFran\xc3\xa7ois\n1\n2/1\n", "François: 2/1"},
        {"nothing but 1/1\n0\n", "nothing but 1/1:"},
        {"cents\n7\n408.\n.5\n-5.0\n100.0 cents\n100.0 C#\n+3.25\n1200.000000\n",
         "cents: 408.0 0.5 -5.0 100.0 100.0 3.25 1200.0"},
        {"ratios\n5\n10/20\n5\n5/4   E\\\n3 / 2\n2147483647/2147483646\n",
         "ratios: 1/2 5/1 5/4 3/2 2147483647/2147483646"},
        {"64 bits\n1\n18446744073709551615/18446744073709551614\n",
         "64 bits: 18446744073709551615/18446744073709551614"},
        {"more lines than the count\n1\n2/1\nnonsense\n", "more lines than the count: 2/1"},
        {"two slashes\n2\n3/2\n697//441\n", "! 4"},
        {"negative\n1\n-3/2\n", "! 3"},
        {"negative below\n1\n3/-2\n", "! 3"},
        {"negative whole\n1\n-2\n", "! 3"},
        {"zero\n1\n0/1\n", "! 3"},
        {"by zero\n! comment\n1\n3/0\n", "! 4"},
        {"a third number\n1\n3/2/2\n", "! 3"},
        {"comma\n1\n701,955\n", "! 3"},
        {"exponent\n1\n7.0e2\n", "! 3"},
        {"steps\n1\n7\\12\n", "! 3"},
        {"only a period\n1\n.\n", "! 3"},
        {"a word\n1\nfifth\n", "! 3"},
        {"no count\n3/2\n2/1\n", "! 2"},
        {"count below 0\n-1\n", "! 2"},
        {"too many\n70000\n2/1\n", "! 2"},
        {"too few\r\n3\r\n3/2\r\n2/1\r\n", "! 5"},
        {"", "! 1"},
        {"! only comments\n!\n", "! 3"},
        {QByteArray("T\0h\0e\0\n\0001\0\n\0", 12), "! 2"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(scaleIn(text), expected) << text.toStdString();
}

// Worked out with big integers for 3^53/2^84.
TEST(ScalaFile, RatiosBeyond64BitsAreTheirCents)
{
    QString reason;
    const auto comma = ScalaPitch::fromText("19383245667680019896796723/19342813113834066795298816", reason);
    ASSERT_TRUE(comma);
    EXPECT_FALSE(comma->isExact());
    EXPECT_NEAR(comma->cents, 3.6150458653, 1e-9);
    EXPECT_NEAR(ScalaPitch::of(OrloRatio(3, 2)).cents, 701.9550008654, 1e-9);
    EXPECT_NEAR(ScalaPitch::ofCents(701.9550008654).factor(), 1.5, 1e-12);
}

TEST(ScalaFile, LongLinesAndEndlessFilesAreBounded)
{
    QByteArray comment(10'000'000, '!');
    EXPECT_EQ(scaleIn(comment + "\nlong comment\n1\n2/1\n"), "long comment: 2/1");
    EXPECT_EQ(scaleIn("long number\n1\n" + QByteArray(ScalaLines::MAX_LINE, '3') + "/2\n"), "! 3");
    EXPECT_EQ(scaleIn("long map\n1\n" + QByteArray(100'000, ' ') + "3/2\n"), "! 3");
    for (const char rest : {'!', '\n', '3', '\0'}) {
        Endless device("endless\n12\n", rest);
        ScalaError error;
        EXPECT_FALSE(ScalaScale::read(device, error)) << static_cast<int>(rest);
        EXPECT_FALSE(error.reason.isEmpty());
        EXPECT_GT(error.line, 2);
    }
    // An end of a line of two bytes that lies across two chunks.
    for (qsizetype length = 65530; length < 65540; ++length)
        EXPECT_EQ(scaleIn('!' + QByteArray(length, '.') + "\r\nx\r\n2\r\n3/2\r\n697//441"), "! 5") << length;

    ScalaError error;
    const QTemporaryDir folder;
    EXPECT_FALSE(ScalaScale::fromFile(folder.path(), error));
    EXPECT_FALSE(ScalaScale::fromFile(folder.filePath(u"missing.scl"_s), error));
    EXPECT_FALSE(ScalaScale::fromFile(u"/dev/zero"_s, error));
    EXPECT_FALSE(error.text().isEmpty());
}

TEST(ScalaFile, AScaleRepeatsByItsLastPitch)
{
    ScalaError error;
    const auto scale = readFrom<ScalaScale>("tritave\n3\n5/3\n1000.5\n3/1\n", error);
    ASSERT_TRUE(scale);
    const struct
    {
        int degree;
        const char* expected;
    } cases[] = {{0, "1/1"}, {1, "5/3"},  {3, "3/1"},  {4, "5/1"},
                 {6, "9/1"}, {-3, "1/3"}, {-2, "5/9"}, {40 * 3, "12157665459056928801/1"}};
    for (const auto& [degree, expected] : cases)
        EXPECT_EQ(scale->degree(degree)->toText().toStdString(), expected);
    EXPECT_NEAR(scale->degree(-1)->cents, 1000.5 - 1200.0 * std::log2(3.0), 1e-9);
    EXPECT_NEAR(scale->degree(41 * 3)->cents, 41 * 1200.0 * std::log2(3.0), 1e-7);
    EXPECT_FALSE(ScalaScale().degree(1));
    EXPECT_EQ(*ScalaScale().degree(0), ScalaPitch());
}

TEST(ScalaFile, KeyboardsMapKeysAsTheFormatSays)
{
    ScalaError error;
    const auto scale = readFrom<ScalaScale>("x\n4\n9/8\n5/4\n3/2\n2/1\n", error);
    ASSERT_TRUE(scale);
    const struct
    {
        QByteArray text;
        int from, to;
        const char* expected;
    } cases[] = {
        // Three keys to an octave of four degrees, one of them without a pitch.
        {"! x.kbm\r\n3\r\n0\r\n127\r\n60\r\n69\r\n440.0\r\n4\r\n0\r\nx\r\n3\r\n", 57, 64,
         "1/2 x 3/4 1/1 x 3/2 2/1 x"},
        // What is left out at the end has no pitch; the pattern repeats by a fifth.
        {"4\n0\n127\n60\n60\n261.63\n3\n0\n1\n", 59, 65, "x 1/1 9/8 x x 3/2 27/16"},
        // No pattern: one degree each. Keys outside of the range have none.
        {"0\n59\n62\n60\n60\n261.63\n0\n", 58, 63, "x 3/4 1/1 9/8 5/4 x"},
        // An octave of degree 0 is the scale's period. Degrees may lie beyond it, and below 1/1.
        {"2 ! size\n0\n127\n60\n60\n440\n0\n-1\n5", 58, 61, "3/8 9/8 3/4 9/4"},
        {"1\n0\n127\n60\n60\n-440.0\n0\n0\n", 0, 0, "! 6"},
        {"1\n0\n127\n60\n60\n10000000\n0\n0\n", 0, 0, "! 6"},
        {"1\n0\n127\n60\n60\n440,0\n0\n0\n", 0, 0, "! 6"},
        {"1\n0\n127\n60\n60\n440\n0\ny\n", 0, 0, "! 8"},
        {"1\n0\n127\n60\n60\n440\n0\n999999999999\n", 0, 0, "! 8"},
        {"1\n0\n127\n60\n60\n440\n0\n" + QByteArray(5000, '1'), 0, 0, "! 8"},
        {"1000000\n0\n127\n60\n60\n440\n0\n", 0, 0, "! 1"},
        {"12\n0\n127\n", 0, 0, "! 4"},
    };
    for (const auto& [text, from, to, expected] : cases)
        EXPECT_EQ(keysIn(text, *scale, from, to), expected) << text.left(100).toStdString();
    EXPECT_EQ(keysIn("1\n0\n127\n60\n60\n440\n0\n0\n", ScalaScale(), 59, 61), "x 1/1 x");
}
