#pragma once

class QString;

/// Whether a new player starts the program.
namespace FirstStart {

/// No options have been saved in this folder yet; to be asked before they are. The environment variable
/// ORLO_FIRST_STEPS=0 denies it, for measurements and stages that are set up by a script.
bool isNow(const QString& dataFolder);

} // namespace FirstStart
