#include "ui/cards/HejiFont.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTransform>

namespace {

constexpr QLatin1StringView FILE_NAME("OrloHeji.otf");
constexpr int SPACES_OF_EM = 4;      // by the Standard Music Font Layout
constexpr qreal PIXELS_OF_EM = 1000; // fine enough that no outline is rounded to pixels

} // namespace

void HejiFont::read()
{
    mIsRead = true;
    mFont.loadFromFile(QCoreApplication::applicationDirPath() + u'/' + FILE_NAME, PIXELS_OF_EM,
                       QFont::PreferNoHinting);
    if (!mFont.isValid())
        qCritical().noquote() << QStringLiteral("Failed to load %1.").arg(FILE_NAME);
}

bool HejiFont::isUsable()
{
    if (!mIsRead)
        read();
    return mFont.isValid();
}

QPainterPath HejiFont::outline(char32_t glyph)
{
    if (const auto known = mOutlines.constFind(glyph); known != mOutlines.constEnd())
        return known.value();
    QPainterPath outline;
    if (isUsable()) {
        const QList<quint32> indexes = mFont.glyphIndexesForString(QString::fromUcs4(&glyph, 1));
        if (!indexes.isEmpty() && indexes.first() != 0) {
            constexpr qreal scale = SPACES_OF_EM / PIXELS_OF_EM;
            outline = QTransform::fromScale(scale, scale).map(mFont.pathForGlyph(indexes.first()));
        }
    }
    mOutlines.insert(glyph, outline);
    return outline;
}
