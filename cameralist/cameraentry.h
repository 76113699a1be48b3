// SPDX-License-Identifier: MIT
// One camera of the camera list.
#pragma once

#include <QString>

#include <cstdint>

/// An attached camera as the library last reported it. A default-made entry stands for no camera.
struct CameraEntry
{
    bool opened = false; // by this program
    std::uint32_t cameraId = 0;
    std::uint32_t deviceId = 0;  // what Camera::open() takes; the key that finds a camera again
    std::uint32_t extraWord = 0; // compared, never shown
    std::uint32_t inUse = 0;     // 0 when no program has the camera open
    QString serialNumber;
    QString model;
};

/// Entries are equal when all their fields are.
inline bool operator==(const CameraEntry &a, const CameraEntry &b)
{
    return a.opened == b.opened && a.cameraId == b.cameraId && a.deviceId == b.deviceId &&
           a.extraWord == b.extraWord && a.inUse == b.inUse && a.serialNumber == b.serialNumber &&
           a.model == b.model;
}

inline bool operator!=(const CameraEntry &a, const CameraEntry &b)
{
    return !(a == b);
}
