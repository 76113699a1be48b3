// SPDX-License-Identifier: MIT
// Where a frame is written to, and with which settings it is taken.
#pragma once

#include "kelvosim.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kelvosim {

/// Memory of a frame; it belongs to somebody else. The lines may be longer than the pixels in them.
struct FrameView
{
    std::uint8_t *data = nullptr;
    int width = 0; ///< pixels
    int height = 0;
    int bytesPerPixel = 1;
    std::size_t lineLength = 0; ///< bytes

    std::uint8_t *line(int y) const { return data + lineLength * static_cast<std::size_t>(y); }
    std::uint8_t *at(int x, int y) const { return line(y) + static_cast<std::ptrdiff_t>(x) * bytesPerPixel; }

    /// Bytes of the pixels of a line.
    std::size_t rowLength() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(bytesPerPixel);
    }
};

inline int bytesPerPixel(SensorKind kind)
{
    return kind == SensorKind::Colour32 ? 4 : 1;
}

/// The settings that a frame is taken with.
struct Exposure
{
    double milliseconds = 0.0;
    double gain = 1.0;                            ///< factor of the master gain, 1 to 4
    std::array<double, 3> colourGains{{1, 1, 1}}; ///< factors: red, green, blue
    bool dark = false;                            ///< the lens cap is on
};

/// Makes frames. Used by one thread at a time.
class FrameSource
{
public:
    FrameSource() = default;
    FrameSource(const FrameSource &) = delete;
    FrameSource &operator=(const FrameSource &) = delete;
    virtual ~FrameSource() = default;

    /// Fills a view of the sensor's size.
    /// @return false when no frame can be had
    virtual bool fill(const FrameView &frame, const Exposure &exposure) = 0;
};

} // namespace kelvosim
