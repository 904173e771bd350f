#include "app/SettingsHidden.h"

bool SettingsHidden::init()
{
    return true;
}

void SettingsHidden::load() {}

void SettingsHidden::save() const {}
