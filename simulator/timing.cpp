// SPDX-License-Identifier: MIT
// The arithmetic of a line by line readout.

#include "timing.h"

#include <algorithm>
#include <cmath>

namespace kelvosim {

namespace {

constexpr int BlankColumns = 160;
constexpr int BlankRows = 40;
constexpr double LongestFrame = 8192; // lines: large sensors need a slower pixel clock for one frame a second
constexpr double DefaultFrameRate = 30.0;
constexpr double DefaultExposure = 50.0;

} // namespace

Timing::Timing(int width, int height)
    : columns(width)
    , rows(height)
{
    setFrameRate(DefaultFrameRate);
    setExposure(DefaultExposure);
}

void Timing::setSize(int width, int height)
{
    const double oldFrameTime = frameTime();
    const double oldExposure = exposure();
    columns = width;
    rows = height;
    keep(oldFrameTime, oldExposure);
}

void Timing::setPixelClock(int megahertz)
{
    const double oldFrameTime = frameTime();
    const double oldExposure = exposure();
    clock = megahertz;
    keep(oldFrameTime, oldExposure);
}

double Timing::minFrameTime() const
{
    return minFrameLines() * lineTime();
}

double Timing::maxFrameTime() const
{
    return maxFrameLines() * lineTime();
}

double Timing::frameTime() const
{
    return frameLines * lineTime();
}

void Timing::setFrameRate(double framesPerSecond)
{
    frameLines = frameLinesFor(1.0 / framesPerSecond);
    exposureLines = std::min(exposureLines, frameLines);
}

double Timing::minExposure() const
{
    return lineTime() * 1000.0;
}

double Timing::maxExposure() const
{
    return frameTime() * 1000.0;
}

double Timing::exposure() const
{
    return exposureLines * lineTime() * 1000.0;
}

void Timing::setExposure(double milliseconds)
{
    exposureLines = exposureLinesFor(milliseconds);
}

double Timing::defaultExposure() const
{
    return exposureLinesFor(DefaultExposure) * lineTime() * 1000.0;
}

/// In seconds; the pixel clock counts pixels per microsecond.
double Timing::lineTime() const
{
    return (columns + BlankColumns) / (clock * 1e6);
}

double Timing::minFrameLines() const
{
    return rows + BlankRows;
}

double Timing::maxFrameLines() const
{
    return std::max(LongestFrame, minFrameLines());
}

double Timing::frameLinesFor(double seconds) const
{
    return std::clamp(std::round(seconds / lineTime()), minFrameLines(), maxFrameLines());
}

double Timing::exposureLinesFor(double milliseconds) const
{
    return std::clamp(std::round(milliseconds / 1000.0 / lineTime()), 1.0, frameLines);
}

void Timing::keep(double seconds, double milliseconds)
{
    frameLines = frameLinesFor(seconds);
    exposureLines = exposureLinesFor(milliseconds);
}

} // namespace kelvosim
