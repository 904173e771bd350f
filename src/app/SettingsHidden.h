#pragma once

/// The options of the licensing subsystem, which no dialog shows. Settings owns them and loads and
/// saves them with its own. A build without licensing keeps nothing here.
class SettingsHidden
{
public:
    /// False when the hidden data cannot be used; counts towards Settings::init.
    bool init();
    void load();
    void save() const;
};
