// SPDX-License-Identifier: MIT
// How pixel clock, frame rate and exposure of a sensor depend on one another.
#pragma once

namespace kelvosim {

/// Reads a sensor out line by line: the pixel clock and the width give the time of a line, in which frame
/// time and exposure are counted. Every setting is cut to its range and snapped to whole lines.
class Timing
{
public:
    static constexpr int SlowestPixelClock = 5; ///< MHz
    static constexpr int FastestPixelClock = 80;
    static constexpr int DefaultPixelClock = 40;

    Timing()
        : Timing(16, 16)
    {
    }

    /// Width and height in pixels. Starts at the defaults.
    Timing(int width, int height);

    /// Another image area: the ranges change, the settings are kept as far as they go.
    void setSize(int width, int height);

    int pixelClock() const { return clock; }
    void setPixelClock(int megahertz);

    double minFrameTime() const; ///< seconds, as the two below
    double maxFrameTime() const;
    double frameTime() const;
    double frameTimeStep() const { return lineTime(); }
    double frameRate() const { return 1.0 / frameTime(); }
    void setFrameRate(double framesPerSecond);

    double minExposure() const; ///< milliseconds, as all exposures
    double maxExposure() const;
    double exposureStep() const { return minExposure(); }
    double exposure() const;
    void setExposure(double milliseconds);
    double defaultExposure() const;

private:
    double lineTime() const;
    double minFrameLines() const;
    double maxFrameLines() const;
    double frameLinesFor(double seconds) const;
    double exposureLinesFor(double milliseconds) const;
    void keep(double seconds, double milliseconds);

    int columns = 0;
    int rows = 0;
    int clock = DefaultPixelClock;
    double frameLines = 1;
    double exposureLines = 1;
};

} // namespace kelvosim
