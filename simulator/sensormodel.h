// SPDX-License-Identifier: MIT
// A sensor one can believe: offset, read noise, dark current and hot pixels, all from a seed.
#pragma once

#include "frameview.h"
#include "random.h"
#include "scene.h"

#include <vector>

namespace kelvosim {

/// The seed of a camera: the one that it was given, or one made from its serial number.
std::uint64_t seedOf(const CameraSpec &spec);

/// The hot pixels of a camera, strongest first. Anywhere but in the first and the last column.
std::vector<HotPixel> plantHotPixels(const CameraSpec &spec);

class SensorModel final : public FrameSource
{
public:
    /// @param referenceExposure milliseconds at which the scene is mid-grey at gain 0
    SensorModel(const CameraSpec &spec, double referenceExposure);

    bool fill(const FrameView &frame, const Exposure &exposure) override;

private:
    void prepareNoise(const FrameView &frame, const Exposure &exposure);
    const std::uint8_t *noiseRow(const FrameView &frame);
    void fillDark(const FrameView &frame);
    void fillLit(const FrameView &frame, const Exposure &exposure);
    void addHotPixels(const FrameView &frame, const Exposure &exposure) const;

    Scene scene;
    Random random;
    std::vector<HotPixel> hotPixels;
    std::vector<float> normal;       ///< deviations, to be scaled
    std::vector<std::uint8_t> noise; ///< grey values in the dark; every row of a frame begins anywhere in it
    double noiseLevel = -1.0;        ///< that the noise was made for, as the next one
    double noiseWidth = -1.0;
    double reference;
};

} // namespace kelvosim
