// SPDX-License-Identifier: MIT
// The camera's settings: pixel clock, frame rate and exposure, each bounding the next, gain, correction.

#include "camera.h"

#include "lasterror.h"

namespace {

/// Frame times in seconds; 1.0 where the library does not tell.
struct FrameTimes
{
    double min = 1.0;
    double max = 1.0;
    double increment = 1.0;
};

FrameTimes frameTimes(kelvo::Handle handle)
{
    FrameTimes times;
    vx_GetFrameTimeRange(handle, &times.min, &times.max, &times.increment);
    return times;
}

} // namespace

void Camera::updatePixelclock()
{
    const kelvo::Status range = vx_GetPixelClockRange(cameraHandle, &pixelclock.min, &pixelclock.max);
    pixelclock.increment = 1;
    throwOnFailure(cameraHandle, range);
    throwOnFailure(cameraHandle, vx_SetPixelClock(cameraHandle, pixelclock.value));
    pixelclock.value = vx_SetPixelClock(cameraHandle, kelvo::QueryCurrent);
    emit pixelclockChanged(pixelclock);
    updateFramerate();
}

void Camera::updateFramerate()
{
    const FrameTimes times = frameTimes(cameraHandle);
    framerate.min = 1 / times.max;
    framerate.max = 1 / times.min;
    framerate.increment = (1 / times.min - 1 / times.max) / ((times.max - times.min) / times.increment);
    vx_SetFrameRate(cameraHandle, framerate.value, &framerate.value);
    emit framerateChanged(framerate);
    updateExposure();
}

void Camera::updateExposure()
{
    vx_GetExposureRange(cameraHandle, &exposure.min, &exposure.max, &exposure.increment);
    double current = 0.0; // Kept: asked for and thrown away, the camera is to see the question
    vx_SetExposureTime(cameraHandle, kelvo::QueryCurrent, &current);
    vx_SetExposureTime(cameraHandle, exposure.value, &exposure.value);
    emit exposureChanged(exposure);
}

void Camera::updateMastergain()
{
    mastergain.value = vx_SetHardwareGain(cameraHandle, kelvo::QueryCurrent, kelvo::GainUnchanged,
                                          kelvo::GainUnchanged, kelvo::GainUnchanged);
    mastergain.max = 100; // fixed, not asked of the library
    mastergain.min = 0;
    emit mastergainChanged(mastergain);
}

void Camera::setBadPixelCorrection(bool enable)
{
    if (!isOpen()) // the action can be triggered without a camera; the library is left alone then
        return;
    vx_StopLiveVideo(cameraHandle, kelvo::WaitUntilDone);
    const double rate = framerate.value;
    double actual = 0.0;
    vx_SetFrameRate(cameraHandle, 1.0 / frameTimes(cameraHandle).min, &actual);
    vx_HotPixel(cameraHandle,
                enable ? kelvo::HotpixelEnableSoftwareCorrection : kelvo::HotpixelDisableCorrection, nullptr, 0);
    vx_SetFrameRate(cameraHandle, rate, &actual);
    vx_SetExposureTime(cameraHandle, exposure.value, &actual);
    vx_CaptureVideo(cameraHandle, kelvo::WaitUntilDone);
}
