#include "sound/RatioTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

TEST(RatioTable, KeepsOrderAndValuesWhileItGrowsAndShrinks)
{
    std::mt19937 random(3);
    RatioTable<int> table; // without storage at first
    std::vector<std::pair<OrloRatio, int>> plain;
    for (int step = 0; step < 20000; ++step) {
        const OrloRatio ratio(1 + random() % 200, 1ULL << random() % 3); // powers of two meet in a hash
        const auto at = std::ranges::find(plain, ratio, &std::pair<OrloRatio, int>::first);
        ASSERT_EQ(table.value(ratio, -1), at == plain.end() ? -1 : at->second);
        if (step % 5000 == 4999) {
            table.clear();
            plain.clear();
        } else if (random() % 3 == 0) {
            table.remove(ratio);
            if (at != plain.end())
                plain.erase(at);
        } else {
            table[ratio] = step;
            if (at == plain.end())
                plain.emplace_back(ratio, step);
            else
                at->second = step;
        }
        auto expected = plain.begin();
        for (const int value : table)
            ASSERT_EQ(value, (expected++)->second);
        ASSERT_EQ(expected, plain.end());
    }
}
