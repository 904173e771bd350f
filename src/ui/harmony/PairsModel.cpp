#include "ui/harmony/PairsModel.h"

#include "ui/harmony/HarmonyTexts.h"
#include "ui/hints/ControlHints.h"

void PairsModel::setHarmony(const Harmony& harmony)
{
    if (harmony.pairs.size() != mHarmony.pairs.size()) {
        beginResetModel();
        mHarmony = harmony;
        endResetModel();
        return;
    }
    mHarmony = harmony;
    if (!mHarmony.pairs.isEmpty())
        emit dataChanged(index(0), index(rowCount() - 1));
}

int PairsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(mHarmony.pairs.size());
}

QVariant PairsModel::data(const QModelIndex& index, int role) const
{
    const bool hasText = role == Qt::DisplayRole || role == Qt::ToolTipRole || role >= Ratio;
    if (!index.isValid() || index.row() >= rowCount() || !hasText)
        return {};
    const Harmony::Pair& pair = mHarmony.pairs[index.row()];
    if (role == IsComma)
        return pair.isComma;
    const harmonytexts::PairTexts texts = harmonytexts::ofPair(mHarmony, pair);
    switch (role) {
    case Qt::ToolTipRole: return hints::inLines(texts.all());
    case Ratio: return texts.ratio;
    case Beside: return texts.beside;
    case Cents: return texts.cents;
    case Name: return texts.name;
    case Distance: return texts.distance;
    case Beats: return texts.beats;
    default: return texts.all();
    }
}
