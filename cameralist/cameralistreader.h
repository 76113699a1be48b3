// SPDX-License-Identifier: MIT
// Asks the camera library which cameras are attached.
#pragma once

#include "cameraentry.h"

#include <cstddef>
#include <deque>

/// How many cameras the library says are attached, 0 where it says less. GUI thread only.
/// @throws std::runtime_error "Can't get number of cameras."
std::size_t numberOfAttachedCameras();

/// At most `number` (from 1) attached cameras in the library's order, `opened` being false in all. GUI thread
/// only.
/// @throws std::runtime_error "Can't get camera list."
std::deque<CameraEntry> readAttachedCameras(std::size_t number);
