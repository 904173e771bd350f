#include "keyboard/TablesInUse.h"

#include "sound/ThreadCheck.h"

#include <utility>

void TablesInUse::set(int slot, std::shared_ptr<const KeyTable> table)
{
    ThreadCheck::gui();
    const auto at = static_cast<std::size_t>(slot);
    // Both threads store before they load, in one order for all: a block that has begun by now may have read
    // the former table, and a later one reads this.
    mRead[at].store(table.get());
    mReplaced.push_back({std::exchange(mTables[at], std::move(table)), mSteps.load()});
    freeUnread();
}

void TablesInUse::freeUnread()
{
    const std::uint64_t now = mSteps.load();
    std::erase_if(mReplaced,
                  [now](const Replaced& replaced) { return replaced.step % 2 == 0 || replaced.step != now; });
}
