#include "fuzz/Fuzz.h"
#include "sound/PatchOutline.h"

namespace {

PatchOutline outlineOf(const QByteArray& text)
{
    const TestHome& home = fuzz::cleanHome();
    const QString path = home.path(QStringLiteral("voice.pd"));
    home.write(path, text);
    return PatchOutline::read(path);
}

bool areSame(const PatchOutline& a, const PatchOutline& b)
{
    return a.endsInsideSubpatch == b.endsInsideSubpatch && a.inlets == b.inlets && a.outlets == b.outlets;
}

} // namespace

FUZZ_TARGET(voice_file)
{
    const PatchOutline outline = outlineOf(input);
    FUZZ_REQUIRE(outline.readable && outline.inlets >= 0 && outline.outlets >= 0);
    FUZZ_REQUIRE(outline.inlets + outline.outlets <= input.count(';'));
    FUZZ_REQUIRE(!outline.endsInsideSubpatch || input.count("canvas") > 1);
    // A statement without its end says nothing.
    FUZZ_REQUIRE(areSame(outline, outlineOf(input + " #X obj 1 1 inlet")));
    // Blanks are as good as line ends, unless one of them is escaped, which is as good as any letter.
    FUZZ_REQUIRE(areSame(outline, outlineOf(QByteArray(input).replace('\n', ' '))));
}
