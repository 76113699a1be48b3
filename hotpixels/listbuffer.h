// SPDX-License-Identifier: MIT
// A hot pixel list in the form in which the camera library exchanges it.
#pragma once

#include "badpixel.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/// The number of entries, then x and y of each: 2n + 1 words.
using ListBuffer = std::vector<std::uint16_t>;

/// The number of entries that the first word of a buffer can say.
constexpr std::size_t longestList = std::numeric_limits<std::uint16_t>::max();

/// The size of the buffer as the library wants to be told.
std::uint32_t bytesIn(const ListBuffer &buffer);

/// The places of `entries` in their order. The first word wraps for more entries than it can say.
ListBuffer bufferFrom(const std::vector<Badpixel> &entries);

/// The entries of a buffer that has its first word, each of the class `kind`. That word may promise more
/// pairs than follow: only those that are there count.
std::vector<Badpixel> entriesFrom(const ListBuffer &buffer, Pixelclass kind);
