// SPDX-License-Identifier: MIT
// Keeps what a camera announces, in one order with the calls of the library between the announcements.
#pragma once

#include "camera.h"
#include "testcamera.h"

#include <QObject>

/// Entries are "vx_SetPixelClock 20" for calls, the exposure without its value, and "pixelclock 20" or
/// "framerate" for what is announced. Keeps the last announced settings too.
class Diary : public QObject
{
public:
    explicit Diary(Camera &camera)
    {
        connect(&camera, &Camera::pixelclockChanged, this, [this](CameraParameter<int> &param) {
            note(QString("pixelclock %1").arg(param.value));
            pixelclock = param;
        });
        connect(&camera, &Camera::framerateChanged, this, [this](CameraParameter<double> &param) {
            note("framerate");
            framerate = param;
        });
        connect(&camera, &Camera::exposureChanged, this, [this](CameraParameter<double> &param) {
            note("exposure");
            exposure = param;
        });
        connect(&camera, &Camera::mastergainChanged, this, [this](CameraParameter<int> &param) {
            note(QString("mastergain %1").arg(param.value));
            mastergain = param;
        });
        connect(&camera, &Camera::displayError, this,
                [this](const QString &text, int msec) { note(QString("%1 (%2)").arg(text).arg(msec)); });
    }

    /// The entries since the last begin().
    QStringList entries()
    {
        takeCalls();
        return kept;
    }

    void begin()
    {
        kelvosim::clearLog();
        taken = 0;
        kept.clear();
    }

    CameraParameter<int> pixelclock;
    CameraParameter<double> framerate;
    CameraParameter<double> exposure;
    CameraParameter<int> mastergain;

private:
    void note(const QString &entry)
    {
        takeCalls();
        kept << entry;
    }

    void takeCalls()
    {
        const QStringList calls = testcamera::calls();
        for (; taken < calls.size(); ++taken) {
            const bool isValue =
                calls[taken].startsWith("vx_SetExposureTime") && calls[taken] != "vx_SetExposureTime 32768";
            kept << (isValue ? QString("vx_SetExposureTime") : calls[taken]);
        }
    }

    QStringList kept;
    int taken = 0;
};

/// What refreshing the exposure calls and announces.
inline QStringList exposureRefresh()
{
    return {"vx_GetExposureRange", "vx_SetExposureTime 32768", "vx_SetExposureTime", "exposure"};
}

/// What refreshing the frame rate, and with it the exposure, calls and announces.
inline QStringList framerateRefresh()
{
    return QStringList{"vx_GetFrameTimeRange", "vx_SetFrameRate", "framerate"} + exposureRefresh();
}

/// The last logged call of this function, whatever its command; one without numbers when there is none.
inline kelvosim::Call lastCall(const std::string &function)
{
    kelvosim::Call last;
    for (const kelvosim::Call &call : kelvosim::log()) {
        if (call.function == function)
            last = call;
    }
    return last;
}
