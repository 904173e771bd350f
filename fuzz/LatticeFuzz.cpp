#include "fuzz/Fuzz.h"
#include "model/Orlo.h"
#include "model/OrloBall.h"

namespace {

/// A step stands in the file as a key and its colon, and more around the ball.
constexpr qsizetype BYTES_OF_A_BALL = 5;

qsizetype countBalls(const OrloBall& ball, int depth = 0)
{
    FUZZ_REQUIRE(ball.path().length() <= qMin(depth, 6));
    qsizetype count = 1;
    for (const OrloBall* child : ball.children())
        count += countBalls(*child, depth + 1);
    return count;
}

} // namespace

FUZZ_TARGET(lattice)
{
    Orlo first;
    first.read(QJsonDocument::fromJson(input).object());
    FUZZ_REQUIRE(countBalls(*first.rootBall()) * BYTES_OF_A_BALL <= input.size() + BYTES_OF_A_BALL);
    FUZZ_REQUIRE(first.findChildren<OrloBall*>().size() * BYTES_OF_A_BALL <= input.size() + BYTES_OF_A_BALL);
    FUZZ_REQUIRE(!first.ballMap().isEmpty());

    const QJsonObject json = fuzz::written(first);
    Orlo second;
    second.read(json);
    FUZZ_REQUIRE(fuzz::written(second) == json);
    FUZZ_REQUIRE(second.ballMap().keys() == first.ballMap().keys());
}
