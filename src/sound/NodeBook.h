#pragma once

#include "sound/NodeParameters.h"
#include "sound/RatioList.h"
#include "sound/RatioTable.h"

/// Which nodes are selected and which are altered, and the values of each: the arithmetic of selection,
/// sliders, resets and the change of a patch. It knows neither voices nor signals. Ratios are absolute,
/// macros count from 0, and values are on the sliders' scale.
///
/// A node that is not selected keeps its own values in its record. The record of a selected node is
/// relative to the sliders: own value = slider + record. Selecting subtracts the sliders' values and
/// deselecting adds them, so neither is heard, and one slider moves all selected nodes.
///
/// One thread only. Each call takes constant time for a node, and none allocates up to the storage that
/// reserve() makes; beyond it the tables grow.
class NodeBook
{
public:
    using Macros = decltype(NodeParameters::macros);

    /// Storage for so many nodes is made beforehand.
    static constexpr int MANY_NODES = 4096;

    /// [stopped] Makes the storage: for MANY_NODES nodes and for so many sounding notes.
    void reserve(int notes);

    /// [audio] In the order of selection. Each of them is altered too.
    const RatioList& selected() const { return selectedNodes; }
    /// [audio] The nodes with values of their own, in the order in which they got them.
    const RatioList& altered() const { return alteredNodes; }
    /// [audio] What the sliders show.
    const NodeParameters& current() const { return currentParameters; }
    /// [audio] The patch's macros, and no glissando.
    const NodeParameters& defaults() const { return defaultParameters; }
    /// [audio] What the next patch takes over from the former one.
    const NodeParameters& cached() const { return cachedParameters; }
    /// [audio] What was selected under the former patch.
    const RatioList& cachedSelection() const { return cachedSelected; }
    /// [audio] The values of a node as they are stored. The node must be altered.
    const NodeParameters& record(const OrloRatio& altered) { return alteredParameters[altered]; }
    /// [audio] What a note of this ratio sounds with: the node's own values, or those of the sliders,
    /// without a glissando, where there is no node.
    NodeParameters heard(const OrloRatio& ratio) const;

    /// [audio] True when the node had no values of its own before. The node must not be selected yet. One
    /// that is selected while its note sounds keeps the macros with which that started.
    bool select(const OrloRatio& ratio);
    /// [audio] False when it is not selected.
    bool deselect(const OrloRatio& ratio);

    /// [audio] A note starts, or goes on, with the macros that the sliders show.
    void setSounding(const OrloRatio& ratio) { setSounding(ratio, currentParameters.macros); }
    /// [audio] The same with other macros: those of a key.
    void setSounding(const OrloRatio& ratio, const Macros& macros) { soundingParameters[ratio] = {macros}; }
    /// [audio] A macro of a note that sounds and is not altered.
    void setSoundingMacro(const OrloRatio& ratio, std::size_t macro, float value)
    {
        if (soundingParameters.find(ratio))
            soundingParameters[ratio].macros.at(macro) = value;
    }
    /// [audio] The note has been let go.
    void endSounding(const OrloRatio& ratio) { soundingParameters.remove(ratio); }
    /// [audio] Every note has been let go, or is set anew.
    void clearSounding() { soundingParameters.clear(); }

    /// [audio] Moves a macro's slider. followMacro() belongs after it.
    void setMacro(std::size_t macro, float value) { currentParameters.macros.at(macro) = value; }
    /// [audio] The selected nodes follow the macro's slider and stay at an end of the range that it pushes
    /// them against. `told(ratio, value)` is called for each of them, with its value from now on.
    template <class Told>
    void followMacro(std::size_t macro, Told&& told)
    {
        const float value = currentParameters.macros.at(macro);
        for (const OrloRatio& ratio : selectedNodes)
            told(ratio, follow(alteredParameters[ratio].macros[macro], value));
    }
    /// [audio] Moves the coarse slider; the selected nodes follow without a limit.
    void slideGlissandoOne(float value);
    /// [audio] The same with the fine one.
    void slideGlissandoTwo(float value);

    /// [audio] A patch's default of a macro, or MacroList::NO_DEFAULT. With `slides` its slider goes there.
    void setDefaultMacro(std::size_t macro, float value, bool slides);
    /// [audio] The default of a macro; without one in the patch, where its slider is.
    float defaultMacro(std::size_t macro) const;
    /// [audio] Sets all sliders to their defaults without moving nodes. No node may be selected.
    void resetSliders();
    /// [audio] Sets the glissando sliders to the middle; `which` is 0 for both, 1 or 2. No node may be
    /// selected.
    void resetGlissandoSliders(short which);

    /// [audio] Sets the record of a node to the defaults. The node must not be selected.
    void resetNode(const OrloRatio& altered);
    /// [audio] Sets only the record's glissando to the default; `which` as above. The node must not be
    /// selected.
    void resetGlissando(const OrloRatio& altered, short which);
    /// [audio] The node has no values of its own any more. Its record stays until it is altered again.
    void removeAltered(const OrloRatio& ratio) { alteredNodes.remove(ratio); }
    /// [audio] The same for all nodes.
    void clearAltered() { alteredNodes.clear(); }

    /// [audio] Before a patch closes: keeps selection and glissando for the next one, with `macros` those
    /// too.
    void writeToCache(bool macros);
    /// [audio] After the next patch has opened: the glissando sliders stand where they stood, or where they
    /// have been moved in between.
    void readFromCache();

private:
    static float follow(float& stored, float slider);
    void makeNode(const OrloRatio& ratio);

    RatioList selectedNodes;
    RatioList alteredNodes;
    RatioTable<NodeParameters> alteredParameters;  // relative to the sliders while selected
    RatioTable<NodeParameters> soundingParameters; // of notes that are not altered
    NodeParameters defaultParameters;
    NodeParameters currentParameters;
    NodeParameters cachedParameters;
    RatioList cachedSelected;
    bool mBetweenPatches = false; // the cache has been written and not been read yet
};
