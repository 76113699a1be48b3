// SPDX-License-Identifier: MIT
// Holds hot pixel entries in list order so that removing them one by one stays cheap in a long list.
#pragma once

#include "badpixel.h"

#include <cstddef>
#include <vector>

/// Entries, one a row. A change costs as much as there are rows between it and the last one, so that walking
/// the list and removing every second row takes linear time; in a plain vector each removal would move all
/// rows behind it. GUI thread only.
class EntryList final
{
public:
    std::size_t size() const { return front.size() + back.size(); }
    bool empty() const { return size() == 0; }

    /// The entry of a row that is there.
    const Badpixel &operator[](std::size_t row) const;
    Badpixel &operator[](std::size_t row);

    /// All rows in one piece, to be walked or put into another order. The next change ends its validity.
    const std::vector<Badpixel> &joined() const;
    std::vector<Badpixel> &joined();

    void append(const Badpixel &entry);
    void append(const std::vector<Badpixel> &list);

    /// Inserts `count` equal entries before `row`, which is at most size().
    void insert(std::size_t row, std::size_t count, const Badpixel &entry);

    /// Removes `count` rows from `row` on, all of which must be there.
    void erase(std::size_t row, std::size_t count);

    void clear() { *this = EntryList(); }

private:
    void splitAt(std::size_t row) const;

    // Where the list is split is of no concern to those who read it.
    mutable std::vector<Badpixel> front;
    mutable std::vector<Badpixel> back; // the rows behind the front ones, the last one first
};
