// SPDX-License-Identifier: MIT
// A camera on the bench, attached or not, open or not.
#pragma once

#include "hotpixelmemory.h"
#include "opencamera.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kelvosim {

/// Guarded by the library's lock.
struct Device
{
    CameraSpec spec; ///< attached, lens cap, in use and firmware need are the present state
    std::shared_ptr<HotPixelMemory> memory;
    std::vector<HotPixel> planted;
    bool ownFactoryList = false; ///< the factory list was given and is not made from the planted hot pixels
    double frameRate = 0.0;      ///< forced; 0: as the camera's settings say
    std::string serialText;      ///< what the camera list tells instead of the truth; empty: the truth
    std::string modelText;
    std::shared_ptr<OpenCamera> open;
    bool opening = false;

    // As last read from the bench file.
    int benchFirmware = 0;
    std::uint32_t failedFrames = 0;
    std::uint32_t listResets = 0;
};

/// One camera as vx_GetCameraList reports it.
struct ListRecord
{
    std::uint32_t cameraId = 0;
    std::uint32_t deviceId = 0;
    std::uint32_t extraWord = 0;
    std::uint32_t inUse = 0;
    char serial[16] = {};
    char model[80] = {};
};
static_assert(sizeof(ListRecord) == 112, "a record of the camera list has 112 bytes");

ListRecord listRecord(const Device &device);

/// Makes hot pixels and factory list anew from the camera's description, as far as they are not given. A
/// replay has no planted hot pixels: only a camera with the sensor model is `modelled`.
void plant(Device &device, bool modelled);

} // namespace kelvosim
