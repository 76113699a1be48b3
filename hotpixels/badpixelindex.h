// SPDX-License-Identifier: MIT
// Finds the entry at a place of a long list without walking the list.
#pragma once

#include "badpixel.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

/// Remembers for each place the first row that holds it. It follows a list that grows at its end by itself;
/// after any other change of the list it must be told to forget. GUI thread only.
class BadpixelIndex final
{
public:
    /// Takes up the entries that were appended since the last call. Call it before asking.
    void follow(const std::vector<Badpixel> &entries);

    /// To be called when rows moved or entries changed; the next follow() starts from the first row.
    void forget() { stale = true; }

    /// The first row that holds this place, whatever its class; -1 when there is none.
    int firstRow(std::uint16_t x, std::uint16_t y) const;

    /// Whether a Factory or User entry holds this place.
    bool isTaken(std::uint16_t x, std::uint16_t y) const;

private:
    struct Place
    {
        int firstRow = -1;
        bool taken = false;
    };

    const Place *find(std::uint16_t x, std::uint16_t y) const;

    std::unordered_map<std::uint32_t, Place> places;
    std::size_t known = 0; // rows taken up so far
    // Forgetting only sets this mark: clearing the user entries forgets once a row.
    bool stale = false;
};
