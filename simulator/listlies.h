// SPDX-License-Identifier: MIT
// What the hot pixel memory of every camera says instead of the truth.
#pragma once

#include <atomic>
#include <cstdint>

namespace kelvosim {

/// May be read and changed from any thread.
struct ListLies
{
    std::atomic<std::int32_t> word{-1}; ///< count that lists carry when they are read; -1: the truth
    std::atomic<bool> aboutCounts{false};
    std::atomic<std::int32_t> count{0}; ///< what the counts of factory and stored list are told to be

    void tellTheTruth()
    {
        word = -1;
        aboutCounts = false;
    }
};

} // namespace kelvosim
