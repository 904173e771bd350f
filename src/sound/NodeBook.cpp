#include "sound/NodeBook.h"

#include "sound/MacroList.h"

namespace {

/// `base` plus `sign` times `by`, in every field.
void add(NodeParameters& base, float sign, const NodeParameters& by)
{
    base.glissOne += sign * by.glissOne;
    base.glissTwo += sign * by.glissTwo;
    for (std::size_t i = 0; i < base.macros.size(); ++i)
        base.macros[i] += sign * by.macros[i];
}

/// 0 both, 1 or 2.
void copyGlissando(const NodeParameters& from, NodeParameters& to, short which = 0)
{
    if (which == 0 || which == 1)
        to.glissOne = from.glissOne;
    if (which == 0 || which == 2)
        to.glissTwo = from.glissTwo;
}

} // namespace

void NodeBook::reserve(int notes)
{
    for (RatioList* list : {&selectedNodes, &alteredNodes, &cachedSelected})
        list->reserve(MANY_NODES);
    alteredParameters.reserve(MANY_NODES);
    soundingParameters.reserve(notes);
}

NodeParameters NodeBook::heard(const OrloRatio& ratio) const
{
    if (!alteredNodes.contains(ratio))
        return {currentParameters.macros};
    NodeParameters node = alteredParameters.value(ratio, {});
    if (selectedNodes.contains(ratio))
        add(node, 1.0F, currentParameters);
    return node;
}

// ---------------------------------------------------------------- selection

bool NodeBook::select(const OrloRatio& ratio)
{
    selectedNodes.append(ratio);
    const bool isNew = !alteredNodes.contains(ratio);
    if (isNew)
        makeNode(ratio);
    add(alteredParameters[ratio], -1.0F, currentParameters);
    return isNew;
}

bool NodeBook::deselect(const OrloRatio& ratio)
{
    if (!selectedNodes.contains(ratio))
        return false;
    add(alteredParameters[ratio], 1.0F, currentParameters);
    selectedNodes.remove(ratio);
    return true;
}

void NodeBook::makeNode(const OrloRatio& ratio)
{
    alteredNodes.append(ratio);
    const NodeParameters* started = soundingParameters.find(ratio);
    alteredParameters[ratio] = {(started ? *started : currentParameters).macros};
}

// ---------------------------------------------------------------- sliders

/// Keeps slider + stored value within 0 to 1, and returns the sum.
float NodeBook::follow(float& stored, float slider)
{
    const float own = stored + slider;
    if (own >= 1.0F) {
        stored = 1.0F - slider;
        return 1.0F;
    }
    if (own <= 0.0F) {
        stored = 0.0F - slider;
        return 0.0F;
    }
    return own;
}

void NodeBook::slideGlissandoOne(float value)
{
    currentParameters.glissOne = value;
    if (mBetweenPatches)
        cachedParameters.glissOne = value; // the next patch must not go back behind it
}

void NodeBook::slideGlissandoTwo(float value)
{
    currentParameters.glissTwo = value;
    if (mBetweenPatches)
        cachedParameters.glissTwo = value;
}

// ---------------------------------------------------------------- defaults and resets

void NodeBook::setDefaultMacro(std::size_t macro, float value, bool slides)
{
    defaultParameters.macros.at(macro) = value;
    if (slides)
        currentParameters.macros[macro] = defaultMacro(macro);
}

float NodeBook::defaultMacro(std::size_t macro) const
{
    const float value = defaultParameters.macros.at(macro);
    return MacroList::isDefault(value) ? value : currentParameters.macros[macro];
}

void NodeBook::resetSliders()
{
    for (std::size_t i = 0; i < currentParameters.macros.size(); ++i)
        currentParameters.macros[i] = defaultMacro(i);
    resetGlissandoSliders(0);
}

void NodeBook::resetGlissandoSliders(short which)
{
    copyGlissando(defaultParameters, currentParameters, which);
    if (mBetweenPatches)
        copyGlissando(defaultParameters, cachedParameters, which);
}

void NodeBook::resetNode(const OrloRatio& altered)
{
    NodeParameters& node = alteredParameters[altered];
    copyGlissando(defaultParameters, node);
    for (std::size_t i = 0; i < node.macros.size(); ++i)
        node.macros[i] = defaultMacro(i);
}

void NodeBook::resetGlissando(const OrloRatio& altered, short which)
{
    copyGlissando(defaultParameters, alteredParameters[altered], which);
}

// ---------------------------------------------------------------- around a change of patch

void NodeBook::writeToCache(bool macros)
{
    cachedSelected.clear();
    for (const OrloRatio& ratio : selectedNodes)
        cachedSelected.append(ratio);
    copyGlissando(currentParameters, cachedParameters);
    if (macros)
        cachedParameters.macros = currentParameters.macros;
    mBetweenPatches = true;
}

void NodeBook::readFromCache()
{
    copyGlissando(cachedParameters, currentParameters);
    mBetweenPatches = false;
}
