// SPDX-License-Identifier: MIT
// One setting of the camera with its range, as the controls show it.
#pragma once

/// A plain value: smallest and largest allowed value, the step between allowed values, the current value.
/// T is int (pixel clock, gain) or double (frame rate, exposure), in the camera library's own units.
template<typename T>
struct CameraParameter
{
    T min = 0;
    T max = 0;
    T increment = 1;
    T value = 0;
};
