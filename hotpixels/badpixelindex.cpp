// SPDX-License-Identifier: MIT
// Finds the entry at a place of a long list without walking the list.
#include "badpixelindex.h"

namespace {

std::uint32_t keyOf(std::uint16_t x, std::uint16_t y)
{
    return static_cast<std::uint32_t>(y) << 16 | x;
}

} // namespace

void BadpixelIndex::follow(const std::vector<Badpixel> &entries)
{
    if (stale) {
        places.clear();
        known = 0;
        stale = false;
    }
    if (known == 0) {
        places.reserve(entries.size());
    }
    for (; known < entries.size(); ++known) {
        const Badpixel &entry = entries[known];
        Place &place = places[keyOf(entry.x, entry.y)];
        if (place.firstRow < 0) {
            place.firstRow = static_cast<int>(known);
        }
        place.taken = place.taken || entry.pixelclass < Ignore;
    }
}

int BadpixelIndex::firstRow(std::uint16_t x, std::uint16_t y) const
{
    const Place *place = find(x, y);
    return place ? place->firstRow : -1;
}

bool BadpixelIndex::isTaken(std::uint16_t x, std::uint16_t y) const
{
    const Place *place = find(x, y);
    return place && place->taken;
}

const BadpixelIndex::Place *BadpixelIndex::find(std::uint16_t x, std::uint16_t y) const
{
    const auto place = places.find(keyOf(x, y));
    return place == places.end() ? nullptr : &place->second;
}
