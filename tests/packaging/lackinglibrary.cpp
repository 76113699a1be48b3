// SPDX-License-Identifier: MIT
// A camera library that lacks most functions, as one of another age may.

extern "C" __attribute__((visibility("default"))) int vx_GetNumberOfCameras(int *count)
{
    *count = 0;
    return 0;
}
