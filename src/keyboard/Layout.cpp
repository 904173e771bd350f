#include "keyboard/Layout.h"

bool Layout::isFor(const QString& input) const
{
    return enabled && (inputs.isEmpty() || inputs.contains(input));
}

QString Layout::kindText(Kind kind)
{
    switch (kind) {
    case Kind::Learned: return QStringLiteral("Learned keys");
    case Kind::Twelve: return QStringLiteral("Twelve steps");
    case Kind::Generators: return QStringLiteral("Two generators");
    case Kind::Scala: return QStringLiteral("Scala file");
    case Kind::Harmonics: return QStringLiteral("Harmonics");
    case Kind::Subharmonics: return QStringLiteral("Subharmonics");
    }
    return QString();
}
