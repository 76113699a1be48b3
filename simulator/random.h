// SPDX-License-Identifier: MIT
// Random numbers that are the same on every machine for the same seed.
#pragma once

#include <cstdint>

namespace kelvosim {

/// The SplitMix64 generator.
class Random
{
public:
    explicit Random(std::uint64_t seed)
        : state(seed)
    {
    }

    std::uint64_t next()
    {
        state += 0x9E3779B97F4A7C15u;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    /// From 0 to below 1.
    double uniform() { return static_cast<double>(next() >> 11) * (1.0 / 9007199254740992.0); }

    /// From 0 to below `limit`.
    std::uint32_t below(std::uint32_t limit)
    {
        return static_cast<std::uint32_t>((next() >> 32) * limit >> 32);
    }

    /// Normal distribution of mean 0 and deviation 1, as a sum of twelve uniform numbers: never beyond 6.
    double normal()
    {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i)
            sum += uniform();
        return sum;
    }

private:
    std::uint64_t state;
};

} // namespace kelvosim
