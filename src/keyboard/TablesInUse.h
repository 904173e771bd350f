#pragma once

#include "keyboard/KeyTable.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

/// The tables of all slots, which [gui] changes and [audio] reads without a lock. A table that a block may
/// still read is kept until that block is over; the engine never frees one.
class TablesInUse
{
public:
    static constexpr int SLOTS = 32;

    /// [gui] Effect: blocks that begin from now on read this one; null: none.
    void set(int slot, std::shared_ptr<const KeyTable> table);
    /// [gui] Frees what no block reads any more.
    void freeUnread();

    /// [audio] Until leave() the tables that at() gives live on.
    void enter() { mSteps.fetch_add(1); }
    /// [audio]
    void leave() { mSteps.fetch_add(1); }
    /// [audio] Null without a table.
    const KeyTable* at(int slot) const { return mRead[static_cast<std::size_t>(slot)].load(); }

private:
    struct Replaced
    {
        std::shared_ptr<const KeyTable> table;
        std::uint64_t step = 0; // of the block that may read it
    };

    std::array<std::atomic<const KeyTable*>, SLOTS> mRead{};
    std::atomic<std::uint64_t> mSteps{0};                       // odd within a block
    std::array<std::shared_ptr<const KeyTable>, SLOTS> mTables; // [gui]
    std::vector<Replaced> mReplaced;                            // [gui]
};
