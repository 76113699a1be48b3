// SPDX-License-Identifier: MIT
// The camera parameter file that vx_LoadParameters reads.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace kelvosim {

/// Settings that a parameter file names; the others stay as they are.
struct Parameters
{
    std::optional<std::int32_t> pixelClock;                ///< MHz
    std::optional<double> frameRate;                       ///< frames per second
    std::optional<double> exposure;                        ///< milliseconds
    std::int32_t masterGain = -1;                          ///< 0 to 100; -1: unchanged
    std::array<std::int32_t, 3> colourGains{{-1, -1, -1}}; ///< red, green, blue
};

/// Reads lines "key = value" with the keys pixel clock, frame rate, exposure, gain, red gain, green gain and
/// blue gain. "#" and ";" begin comments, section headings in brackets are passed over.
/// Values that no camera could take, and those that mean a query elsewhere, are refused.
/// @throws Failure CannotOpenFile or DamagedFile
Parameters readParameterFile(const std::string &path);

} // namespace kelvosim
