#include "corvanta/sort.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

void sortIntInt(int *keys, int *values, int from, int to)
{
    std::vector<std::pair<int, int>> pairs;
    for (int i = from; i <= to; ++i) {
        pairs.emplace_back(keys[i], values[i]);
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    for (int i = from; i <= to; ++i) {
        std::tie(keys[i], values[i]) = pairs[static_cast<size_t>(i - from)];
    }
}
