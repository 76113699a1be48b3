// SPDX-License-Identifier: MIT
// The camera's settings: pixel clock, frame rate and exposure, each bounding the next, gain, correction.

#include "camera.h"

#include "busyflag.h"
#include "lasterror.h"
#include "parameterfile.h"
#include "truncate.h"

namespace {

// One for each setting, whichever camera it is of: that setter is under way.
bool settingPixelclock = false;
bool settingFramerate = false;
bool settingExposure = false;
bool settingMastergain = false;

/// The value cut to the setting's range. Defined for ranges upside down and for what is no number, too, which
/// the standard library's way is not.
template<typename T>
T clamped(T value, const CameraParameter<T> &param)
{
    return value < param.min ? param.min : (value < param.max ? value : param.max);
}

/// The step of the setting's range that the value lies on, cut toward zero. A double holds the difference and
/// the quotient of any two whole numbers exactly enough, and dividing by an increment of 0 does no harm.
template<typename T>
int stepNumber(int value, const CameraParameter<T> &param)
{
    return truncated((static_cast<double>(value) - param.min) / param.increment);
}

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

void Camera::setPixelclock(int value)
{
    if (!isOpen() || settingPixelclock)
        return;
    const FlagSetter busy(settingPixelclock);
    const int wanted = clamped(value, pixelclock);
    if (wanted != pixelclock.value) {
        pixelclock.value = wanted;
        emit pixelclockChanged(pixelclock);
    }
    vx_SetPixelClock(cameraHandle, pixelclock.value);
    updateFramerate();
}

void Camera::setPixelclockRelative(int value)
{
    setPixelclock(stepNumber(value, pixelclock));
}

void Camera::setFramerate(double value)
{
    if (!isOpen() || settingFramerate)
        return;
    const FlagSetter busy(settingFramerate);
    const double wanted = clamped(value, framerate);
    if (wanted != framerate.value) {
        framerate.value = wanted;
        vx_SetFrameRate(cameraHandle, wanted, &framerate.value);
        emit framerateChanged(framerate);
    }
    updateExposure();
}

void Camera::setFramerateRelative(int value)
{
    setFramerate(stepNumber(value, framerate));
}

void Camera::setExposure(double value)
{
    if (!isOpen() || settingExposure)
        return;
    const FlagSetter busy(settingExposure);
    const double wanted = clamped(value, exposure);
    if (wanted != exposure.value) {
        exposure.value = wanted;
        emit exposureChanged(exposure);
    }
    // What the camera makes of it is kept and not announced again.
    vx_SetExposureTime(cameraHandle, exposure.value, &exposure.value);
}

void Camera::setExposureRelative(int value)
{
    setExposure(stepNumber(value, exposure));
}

void Camera::setMastergain(int value)
{
    if (!isOpen() || settingMastergain)
        return;
    const FlagSetter busy(settingMastergain);
    announceMastergain(value);
    vx_SetHardwareGain(cameraHandle, mastergain.value, kelvo::GainUnchanged, kelvo::GainUnchanged,
                       kelvo::GainUnchanged);
}

/// Kept: the camera gets the master gain of the file as it is, whatever the parameter shows, and is told also
/// while a call of setMastergain() is under way.
void Camera::setGains(const SensorSettings &settings)
{
    announceMastergain(settings.masterGain);
    vx_SetHardwareGain(cameraHandle, settings.masterGain, settings.redGain, settings.greenGain,
                       settings.blueGain);
}

void Camera::announceMastergain(int value)
{
    const int wanted = clamped(value, mastergain);
    if (wanted != mastergain.value) {
        mastergain.value = wanted;
        emit mastergainChanged(mastergain);
    }
}

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
                enable ? kelvo::HotpixelEnableSoftwareCorrection : kelvo::HotpixelDisableCorrection, nullptr,
                0);
    vx_SetFrameRate(cameraHandle, rate, &actual);
    vx_SetExposureTime(cameraHandle, exposure.value, &actual);
    vx_CaptureVideo(cameraHandle, kelvo::WaitUntilDone);
}
