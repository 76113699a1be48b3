// SPDX-License-Identifier: MIT
// What a camera without lens cap looks at: drifting bars of light with a disc that wanders before them.
#pragma once

#include "frameview.h"

#include <vector>

namespace kelvosim {

/// Gives the light row by row, as one byte for each byte of a frame's row: 0 is dark, about 110 is mid-grey.
class Scene
{
public:
    Scene(SensorKind sensorKind, int sensorWidth, int sensorHeight);

    void setColourGains(const std::array<double, 3> &gains);

    /// Goes on to the next frame.
    void move();

    /// The light of a row; valid until the next call.
    const std::uint8_t *row(int y);

    /// How bright the row is lit, 256 being full.
    std::uint32_t rowBrightness(int y) const;

private:
    void paintBars();
    std::uint8_t light(int x, int y, int byte) const;
    double colourGain(int colour) const;
    int channel(int x, int y, int byte) const;
    void paintDisc(std::uint8_t *line, int y) const;

    SensorKind kind;
    int width;
    int height;
    int bytes;  ///< a pixel
    int period; ///< of the bars in pixels; even, so that drifting keeps the colour pattern
    std::array<double, 3> colourGains{{1, 1, 1}};
    std::vector<std::uint8_t> bars[2]; ///< an even and an odd row, one period longer than the sensor
    std::vector<std::uint8_t> scratch;
    int drift = 0;
    int frame = 0;
    double discX = 0.0;
    double discY = 0.0;
};

} // namespace kelvosim
