// SPDX-License-Identifier: MIT
// Painting the light.

#include "scene.h"

#include <algorithm>
#include <cmath>

namespace kelvosim {

namespace {

constexpr double Pi = 3.14159265358979323846;
constexpr int Padding = 3; // channel of the byte of 32-bit pixels that stays 0
constexpr int Colours = 3; // red, green, blue
constexpr double DiscLight[Colours] = {225, 150, 60};
constexpr double BarPhase[Colours] = {0.0, 0.9, 1.9};

std::uint8_t toByte(double value)
{
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

} // namespace

Scene::Scene(SensorKind sensorKind, int sensorWidth, int sensorHeight)
    : kind(sensorKind)
    , width(sensorWidth)
    , height(sensorHeight)
    , bytes(bytesPerPixel(sensorKind))
    , period(std::max(2, sensorWidth / 6 * 2))
{
    paintBars();
}

void Scene::setColourGains(const std::array<double, 3> &gains)
{
    if (gains == colourGains)
        return;
    colourGains = gains;
    paintBars();
}

void Scene::move()
{
    ++frame;
    drift = (drift + 2) % period;
    discX = width * (0.5 + 0.35 * std::cos(frame * 0.031));
    discY = height * (0.5 + 0.3 * std::sin(frame * 0.047));
}

const std::uint8_t *Scene::row(int y)
{
    const std::uint8_t *const line = bars[y & 1].data() + static_cast<std::ptrdiff_t>(drift) * bytes;
    if (std::abs(y - discY) >= height / 6.0)
        return line;
    scratch.assign(line, line + static_cast<std::ptrdiff_t>(width) * bytes);
    paintDisc(scratch.data(), y);
    return scratch.data();
}

std::uint32_t Scene::rowBrightness(int y) const
{
    return 176u + static_cast<std::uint32_t>(80.0 * y / height);
}

void Scene::paintBars()
{
    for (int y = 0; y < 2; ++y) {
        bars[y].clear();
        for (int x = 0; x < width + period; ++x) {
            for (int byte = 0; byte < bytes; ++byte)
                bars[y].push_back(light(x, y, byte));
        }
    }
}

std::uint8_t Scene::light(int x, int y, int byte) const
{
    const int colour = channel(x, y, byte);
    if (colour == Padding)
        return 0;
    return toByte(colourGain(colour) * (115.0 + 45.0 * std::sin(2.0 * Pi * x / period + BarPhase[colour])));
}

/// A monochrome sensor has no colours to amplify.
double Scene::colourGain(int colour) const
{
    return kind == SensorKind::Mono ? 1.0 : colourGains[static_cast<std::size_t>(colour)];
}

/// The pattern of a raw sensor has red where x and y are even and blue where both are odd; the bytes of a
/// 32-bit pixel are blue, green, red and one that stays 0.
int Scene::channel(int x, int y, int byte) const
{
    switch (kind) {
    case SensorKind::RawBayer:
        return (x & 1) == (y & 1) ? (x & 1) * 2 : 1;
    case SensorKind::Colour32:
        return byte == Padding ? Padding : 2 - byte;
    case SensorKind::Mono:
        break;
    }
    return 1;
}

void Scene::paintDisc(std::uint8_t *line, int y) const
{
    const double radius = height / 6.0;
    const double half = std::sqrt(std::max(0.0, radius * radius - (y - discY) * (y - discY)));
    const int begin = std::clamp(static_cast<int>(discX - half), 0, width);
    const int end = std::clamp(static_cast<int>(discX + half), 0, width);
    for (int x = begin; x < end; ++x) {
        for (int byte = 0; byte < bytes; ++byte) {
            const int colour = channel(x, y, byte);
            if (colour != Padding)
                line[x * bytes + byte] = toByte(colourGain(colour) * DiscLight[colour]);
        }
    }
}

} // namespace kelvosim
