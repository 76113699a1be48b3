// SPDX-License-Identifier: MIT
// Memory that is given in large pieces.
#pragma once

#include <cstddef>

/// Asks the system to back a large block of fresh memory with large pages. It gives and clears memory on
/// first touch, a page at a time, which takes as long as averaging the frames where pages are small. A system
/// that has no large pages gives small ones as ever.
void askForLargePages(void *memory, std::size_t bytes) noexcept;
