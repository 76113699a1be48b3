// SPDX-License-Identifier: MIT
// The camera's known starting point: the settings of the parameter file, or those for hot pixel work.

#include "camera.h"

#include "parameterfile.h"

#include <QFile>

namespace {

constexpr const char *ParameterFileName = "cameraparameter.xml"; // in the current directory

// Long exposures show hot pixels, so the camera is to run slowly.
constexpr double DefaultFramerate = 1.0;
constexpr double DefaultExposure = 300.0;
constexpr int DefaultMastergain = 50;

} // namespace

void Camera::setAutoConfig()
{
    if (!isOpen())
        return;
    if (const std::optional<SensorSettings> settings = readSettings())
        applySettings(*settings);
    else
        applyDefaults();
}

std::optional<SensorSettings> Camera::readSettings()
{
    QFile file(ParameterFileName);
    ParameterFile parameters;
    if (!file.open(QIODevice::ReadOnly) || !parameters.load(file))
        emit displayError(tr("Can't open camera parameter file."), 2000);
    return parameters.settingsFor(sensorInfo.sensorId);
}

void Camera::applySettings(const SensorSettings &settings)
{
    setPixelclock(settings.pixelclock);
    setFramerate(settings.framerate);
    setExposure(settings.exposure);
    setGains(settings);
}

void Camera::applyDefaults()
{
    slowPixelclockDown();
    setFramerate(DefaultFramerate);
    setExposure(DefaultExposure);
    setMastergain(DefaultMastergain);
}

/// Halves the pixel clock until one frame a second is possible, but never down to its minimum. A half that
/// changes nothing ends it too: the setter is busy, or the range lets nothing smaller in.
void Camera::slowPixelclockDown()
{
    while (framerate.min > DefaultFramerate) {
        const int before = pixelclock.value;
        if (pixelclock.min >= before / 2)
            return;
        setPixelclock(before / 2);
        if (pixelclock.value == before)
            return;
    }
}
