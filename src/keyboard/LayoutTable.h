#pragma once

#include "keyboard/KeyTable.h"

#include <QList>
#include <QString>

#include <memory>

struct Layout;

/// From layouts to what each key of an input plays. [any]
namespace LayoutTable {

/// The first layout in the list that has a key decides on it, even that it is silent. Ratios of primes up to
/// 31 and within 64 bits are exact, all else is tempered. Never null.
std::shared_ptr<const KeyTable> make(const QList<Layout>& layouts, const QString& input);

} // namespace LayoutTable
