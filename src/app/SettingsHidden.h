#pragma once

/// The options of the licensing subsystem that no dialog shows. Owned by Settings and loaded and
/// saved along with it. A build without licensing keeps nothing here.
class SettingsHidden
{
public:
    /// False when the hidden data cannot be used; counts towards Settings::init.
    bool init();
    void load();
    void save() const;
};
