// SPDX-License-Identifier: MIT
// Grouping the pieces of a rasterised figure by row, each row in order from left to right.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tessal::canvasdetail {

// Calls visit with the items of every row from the top, each row ordered by left(item). A
// figure has few rows and a row few items: the items are bucketed by row (counting) into
// sorted, and each row is ordered by insertion. rowEnd is scratch memory kept by the caller.
template <typename Item, typename Left, typename Visit>
void ForEachRow(const std::vector<Item> &items, std::vector<Item> &sorted,
                std::vector<std::size_t> &rowEnd, Left left, Visit visit)
{
    if (items.empty())
        return;
    const auto [top, bottom] = std::minmax_element(
        items.begin(), items.end(), [](const Item &a, const Item &b) { return a.Y < b.Y; });
    const std::int32_t first = top->Y;
    rowEnd.assign(std::size_t(bottom->Y - first) + 2, 0);
    for (const Item &item : items)
        ++rowEnd[std::size_t(item.Y - first) + 1];
    for (std::size_t i = 1; i < rowEnd.size(); ++i)
        rowEnd[i] += rowEnd[i - 1];
    sorted.resize(items.size());
    for (const Item &item : items)
        sorted[rowEnd[std::size_t(item.Y - first)]++] = item;
    // Each start has moved on to the row's end.
    std::size_t begin = 0;
    for (std::size_t row = 0; row + 1 < rowEnd.size(); ++row) {
        const std::size_t end = rowEnd[row];
        for (std::size_t i = begin + 1; i < end; ++i)
            for (std::size_t j = i; j > begin && left(sorted[j]) < left(sorted[j - 1]); --j)
                std::swap(sorted[j], sorted[j - 1]);
        if (end > begin)
            visit(std::span<const Item>(sorted).subspan(begin, end - begin));
        begin = end;
    }
}

} // namespace tessal::canvasdetail
