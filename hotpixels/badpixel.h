// SPDX-License-Identifier: MIT
// One hot pixel entry, the record that the whole program shares.
#pragma once

#include <cstdint>

/// Where an entry comes from. Only User entries are the user's own.
enum Pixelclass : std::uint8_t {
    Factory = 0,
    User = 1,
    Ignore = 2,
};

/// A pixel of the full sensor image, (0, 0) being the top left, with its class (a Pixelclass value, or
/// whatever a file said).
struct Badpixel
{
    std::uint16_t x = 0;
    std::uint16_t y = 0;
    std::uint8_t pixelclass = Factory;
};
