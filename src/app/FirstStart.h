#pragma once

class QString;

/// Whether a new player starts the program.
namespace FirstStart {

/// No options have been saved in this folder yet; to be asked before they are.
bool isNow(const QString& dataFolder);

} // namespace FirstStart
