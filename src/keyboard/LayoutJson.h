#pragma once

#include "keyboard/Layout.h"

#include <QJsonObject>
#include <QStringList>

#include <optional>

/// One layout as JSON. [any]
namespace layoutjson {

/// The values of the layout's kind only.
QJsonObject write(const Layout& layout);
/// What is missing keeps its default. A wrong value takes its whole layout with it, a wrong learned key only
/// itself.
std::optional<Layout> read(const QJsonObject& json, QStringList& complaints);

} // namespace layoutjson
