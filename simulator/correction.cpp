// SPDX-License-Identifier: MIT
// Averaging the neighbours of listed pixels.

#include "correction.h"

#include <algorithm>
#include <tuple>

namespace kelvosim {

namespace {

constexpr int FarthestNeighbour = 4; // in steps of the distance

class Corrector
{
public:
    Corrector(const FrameView &view, const std::vector<Pixel> &pixels, int step)
        : frame(view)
        , listed(pixels)
        , distance(step)
    {
    }

    void correct(const Pixel &pixel) const
    {
        for (int steps = 1; steps <= FarthestNeighbour; ++steps) {
            if (average(pixel, steps * distance))
                return;
        }
    }

private:
    bool average(const Pixel &pixel, int away) const
    {
        int sums[4] = {};
        int count = 0;
        for (int dy = -away; dy <= away; dy += away) {
            for (int dx = -away; dx <= away; dx += away) {
                if (isUsable(pixel.x + dx, pixel.y + dy)) {
                    add(sums, frame.at(pixel.x + dx, pixel.y + dy));
                    ++count;
                }
            }
        }
        for (int byte = 0; count > 0 && byte < frame.bytesPerPixel; ++byte)
            frame.at(pixel.x, pixel.y)[byte] = static_cast<std::uint8_t>((sums[byte] + count / 2) / count);
        return count > 0;
    }

    void add(int *sums, const std::uint8_t *pixel) const
    {
        for (int byte = 0; byte < frame.bytesPerPixel; ++byte)
            sums[byte] += pixel[byte];
    }

    /// The pixel itself is listed, so it never counts as its own neighbour.
    bool isUsable(int x, int y) const
    {
        if (x < 0 || y < 0 || x >= frame.width || y >= frame.height)
            return false;
        const Pixel pixel{static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y)};
        return !std::binary_search(listed.begin(), listed.end(), pixel, comesBefore);
    }

    const FrameView &frame;
    const std::vector<Pixel> &listed;
    int distance;
};

} // namespace

bool comesBefore(const Pixel &a, const Pixel &b)
{
    return std::tie(a.y, a.x) < std::tie(b.y, b.x);
}

void correct(const FrameView &frame, const std::vector<Pixel> &listed, int distance)
{
    const Corrector corrector(frame, listed, distance);
    for (const Pixel &pixel : listed) {
        if (pixel.x < frame.width && pixel.y < frame.height)
            corrector.correct(pixel);
    }
}

} // namespace kelvosim
