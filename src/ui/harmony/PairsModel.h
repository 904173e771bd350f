#pragma once

#include "harmony/Harmony.h"

#include <QAbstractListModel>

/// The pairs of notes that sound, a row each. Texts are made for the rows that are looked at. [gui]
class PairsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { Ratio = Qt::UserRole, Beside, Cents, Name, Distance, Beats, IsComma };

    using QAbstractListModel::QAbstractListModel;

    /// As many pairs as before stay where the list is scrolled to.
    void setHarmony(const Harmony& harmony);
    const Harmony& harmony() const { return mHarmony; }

    int rowCount(const QModelIndex& parent = {}) const override;
    /// The role of the display has all of the row in one line.
    QVariant data(const QModelIndex& index, int role) const override;

private:
    Harmony mHarmony;
};
