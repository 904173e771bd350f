#include "ui/panel/MonoPolyButtons.h"

#include "sound/PdPlayer.h"

#include <QPushButton>

MonoPolyButtons::MonoPolyButtons(QPushButton* mono, QPushButton* poly, PdPlayer* player)
    : mMono(mono)
    , mPoly(poly)
    , mPlayer(player)
{
}

void MonoPolyButtons::monoClicked()
{
    clicked(true);
}

void MonoPolyButtons::polyClicked()
{
    clicked(false);
}

void MonoPolyButtons::clicked(bool mono)
{
    if (!(mono ? mMono : mPoly)->isChecked()) { // it was on, and a click does not turn it off
        showMonophonic(mono);
        return;
    }
    mPlayer->queueGui(OrloEvent::MonophonicSet, mono ? 1.0F : 0.0F);
}

void MonoPolyButtons::chooseMono()
{
    showMonophonic(true);
    clicked(true);
}

void MonoPolyButtons::choosePoly()
{
    showMonophonic(false);
    clicked(false);
}

void MonoPolyButtons::showMonophonic(bool on)
{
    mMono->setChecked(on);
    mPoly->setChecked(!on);
}
