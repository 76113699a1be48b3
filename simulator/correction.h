// SPDX-License-Identifier: MIT
// Replaces listed pixels by what their neighbours read.
#pragma once

#include "frameview.h"

#include <vector>

namespace kelvosim {

/// Row by row, left to right; the order in which correct() wants its list.
bool comesBefore(const Pixel &a, const Pixel &b);

/// Gives every listed pixel the average of its neighbours of the same colour that are not listed themselves.
/// @param listed sorted by comesBefore(); entries outside the frame are passed over
/// @param distance between pixels of one colour: 2 on a raw Bayer sensor, else 1
void correct(const FrameView &frame, const std::vector<Pixel> &listed, int distance);

} // namespace kelvosim
