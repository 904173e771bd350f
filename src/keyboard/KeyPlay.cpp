#include "keyboard/KeyPlay.h"

struct KeyPlay::State
{
};

KeyPlay::KeyPlay() = default;
KeyPlay::~KeyPlay() = default;

void KeyPlay::setRing(int, MidiInRing*) {}
void KeyPlay::setTable(int, std::shared_ptr<const KeyTable>) {}
void KeyPlay::setSettings(const KeySettings&) {}

std::size_t KeyPlay::takeMessages(std::span<MidiInMessage>)
{
    return 0;
}

void KeyPlay::playInto(PdPlayer&) {}
