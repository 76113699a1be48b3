// SPDX-License-Identifier: MIT
// Making frames from tables of noise, rows of light and a list of hot pixels.

#include "sensormodel.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <utility>

namespace kelvosim {

namespace {

constexpr double Offset = 4.0;         // grey values
constexpr double DarkCurrent = 0.0005; // grey values per millisecond at gain factor 1
constexpr double WeakestRate = 0.2;    // of a hot pixel, in the same unit
constexpr double StrongestRate = 8.0;
constexpr std::size_t NoiseLength = 65536; // a power of two
constexpr std::uint32_t FullLight = 256;   // a factor of 1 between light and grey values

std::uint64_t hashOf(const std::string &text)
{
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const unsigned char c : text)
        hash = (hash ^ c) * 0x100000001B3u;
    return hash;
}

/// Brightens a row by the light that falls on it.
void addLight(std::uint8_t *line, const std::uint8_t *light, const std::uint8_t *noise, std::uint32_t factor,
              std::size_t length)
{
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint32_t value = ((light[i] * factor) >> 8) + noise[i];
        line[i] = static_cast<std::uint8_t>(value < 255u ? value : 255u);
    }
}

void brighten(std::uint8_t &value, double by)
{
    value = static_cast<std::uint8_t>(std::min(255.0, value + std::round(by)));
}

} // namespace

std::uint64_t seedOf(const CameraSpec &spec)
{
    return spec.seed != 0 ? spec.seed : hashOf(spec.serial);
}

std::vector<HotPixel> plantHotPixels(const CameraSpec &spec)
{
    const int columns = spec.width - 2;
    if (columns < 1 || spec.height < 1)
        return {};
    Random random(seedOf(spec));
    const auto room = static_cast<std::size_t>(columns) * static_cast<std::size_t>(spec.height) / 4;
    const std::size_t count = std::min(room, static_cast<std::size_t>(std::max(0, spec.hotPixels)));
    std::set<std::pair<int, int>> taken;
    std::vector<HotPixel> planted;
    while (planted.size() < count) {
        const auto x = static_cast<std::uint16_t>(1 + random.below(static_cast<std::uint32_t>(columns)));
        const auto y = static_cast<std::uint16_t>(random.below(static_cast<std::uint32_t>(spec.height)));
        const double rate = WeakestRate * std::pow(StrongestRate / WeakestRate, random.uniform());
        if (taken.insert({x, y}).second)
            planted.push_back({{x, y}, rate});
    }
    std::sort(planted.begin(), planted.end(),
              [](const HotPixel &a, const HotPixel &b) { return a.rate > b.rate; });
    return planted;
}

SensorModel::SensorModel(const CameraSpec &spec, double referenceExposure)
    : scene(spec.kind, spec.width, spec.height)
    , random(~seedOf(spec))
    , hotPixels(plantHotPixels(spec))
    , normal(NoiseLength)
    , reference(referenceExposure)
{
    for (float &value : normal)
        value = static_cast<float>(random.normal());
}

bool SensorModel::fill(const FrameView &frame, const Exposure &exposure)
{
    prepareNoise(frame, exposure);
    if (exposure.dark)
        fillDark(frame);
    else
        fillLit(frame, exposure);
    addHotPixels(frame, exposure);
    return true;
}

/// The byte of 32-bit pixels that holds no colour stays 0.
void SensorModel::prepareNoise(const FrameView &frame, const Exposure &exposure)
{
    const double level = Offset + DarkCurrent * exposure.milliseconds * exposure.gain;
    const double width = 0.8 + 0.2 * exposure.gain;
    if (level == noiseLevel && width == noiseWidth)
        return;
    noiseLevel = level;
    noiseWidth = width;
    const bool padded = frame.bytesPerPixel == 4;
    noise.resize(NoiseLength + frame.rowLength());
    for (std::size_t i = 0; i < noise.size(); ++i) {
        const double value = std::round(level + width * static_cast<double>(normal[i % NoiseLength]));
        noise[i] =
            padded && i % 4 == 3 ? std::uint8_t{0} : static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
    }
}

const std::uint8_t *SensorModel::noiseRow(const FrameView &frame)
{
    const std::size_t begin = random.next() % NoiseLength;
    return noise.data() + begin / static_cast<std::size_t>(frame.bytesPerPixel) *
                              static_cast<std::size_t>(frame.bytesPerPixel);
}

void SensorModel::fillDark(const FrameView &frame)
{
    const std::size_t length = frame.rowLength();
    for (int y = 0; y < frame.height; ++y)
        std::memcpy(frame.line(y), noiseRow(frame), length);
}

void SensorModel::fillLit(const FrameView &frame, const Exposure &exposure)
{
    scene.setColourGains(exposure.colourGains);
    scene.move();
    const double strength = FullLight * exposure.milliseconds * exposure.gain / reference;
    const auto factor = static_cast<std::uint32_t>(std::min(strength, 65535.0));
    const std::size_t length = frame.rowLength();
    for (int y = 0; y < frame.height; ++y)
        addLight(frame.line(y), scene.row(y), noiseRow(frame), (factor * scene.rowBrightness(y)) >> 8,
                 length);
}

void SensorModel::addHotPixels(const FrameView &frame, const Exposure &exposure) const
{
    const int colours = frame.bytesPerPixel == 4 ? 3 : 1;
    for (const HotPixel &hot : hotPixels) {
        std::uint8_t *const pixel = frame.at(hot.at.x, hot.at.y);
        for (int colour = 0; colour < colours; ++colour)
            brighten(pixel[colour], hot.rate * exposure.milliseconds * exposure.gain);
    }
}

} // namespace kelvosim
