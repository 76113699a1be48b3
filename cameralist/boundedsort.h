// SPDX-License-Identifier: MIT
// A sort that stays inside its array whatever the comparison says.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

/// Merges the sorted runs [start, middle) and [middle, end) of `from` into the same places of `to`.
template<typename List, typename Before>
void mergeRuns(const List &from, List &to, std::size_t start, std::size_t middle, std::size_t end,
               Before &before)
{
    std::size_t left = start;
    std::size_t right = middle;
    for (std::size_t next = start; next < end; ++next) {
        const bool takeRight = left == middle || (right < end && before(from[right], from[left]));
        to[next] = from[takeRight ? right++ : left++];
    }
}

/// Puts each item in front of those before it that it comes before; in front of all when it comes before the
/// first.
template<typename List, typename Before>
void insertInOrder(List &items, Before &before)
{
    const auto first = items.begin();
    for (auto item = first; item != items.end(); ++item) {
        auto place = item;
        if (item != first && before(*item, *first))
            place = first;
        while (place != first && before(*item, *std::prev(place)))
            --place;
        std::rotate(place, item, std::next(item));
    }
}

/// Sorts `items`, a vector or deque: few by insertion, more by merging runs of doubling length. Equal items
/// keep their order.
///
/// std::sort relies on the comparison being an ordering and runs out of the array where it is none, as when
/// cameras are sorted by device id. Here such a comparison only leaves the items in some order, which for few
/// is that of std::sort. When it throws, `items` is as it was before.
template<typename List, typename Before>
void boundedSort(List &items, Before before)
{
    constexpr std::size_t Few = 16;
    List sorted = items;
    const std::size_t count = items.size();
    if (count <= Few) {
        insertInOrder(sorted, before);
        std::swap(items, sorted);
        return;
    }
    List merged = items;
    for (std::size_t run = 1; run < count; run *= 2) {
        for (std::size_t start = 0; start < count; start += 2 * run) {
            mergeRuns(sorted, merged, start, std::min(start + run, count), std::min(start + 2 * run, count),
                      before);
        }
        std::swap(sorted, merged);
    }
    std::swap(items, sorted);
}
