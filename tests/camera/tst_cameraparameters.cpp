// SPDX-License-Identifier: MIT
// The camera's settings: what is announced at the start, the ranges, the switch of the correction.

#include "camera.h"
#include "testcamera.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>

namespace {

/// Frame times in seconds.
struct FrameTimes
{
    explicit FrameTimes(kelvo::Handle camera) { vx_GetFrameTimeRange(camera, &min, &max, &step); }

    double min = 0.0;
    double max = 0.0;
    double step = 0.0;
};

/// Keeps the frame rate and the exposure that a camera announces.
class Announced : public QObject
{
public:
    explicit Announced(Camera &camera)
    {
        connect(&camera, &Camera::framerateChanged, this,
                [this](CameraParameter<double> &param) { framerate = param; });
        connect(&camera, &Camera::exposureChanged, this,
                [this](CameraParameter<double> &param) { exposure = param; });
    }

    CameraParameter<double> framerate;
    CameraParameter<double> exposure;
};

} // namespace

class TestCameraParameters : public QObject
{
    Q_OBJECT

private slots:
    void init() { testcamera::resetTo(testcamera::small()); }

    void settingsAreAnnouncedInOrder();
    void theFrameRateRangeFollowsTheFrameTimes();
    void unreadableFrameTimesLeaveOneFrameASecond();
    void loadParametersReportsFailures();
    void correctionOnAClosedCameraCallsNothing();
    void correctionIsSwitchedAtTheHighestFrameRate();
};

void TestCameraParameters::settingsAreAnnouncedInOrder()
{
    Camera camera;
    QStringList order;
    connect(&camera, &Camera::pixelclockChanged, [&](CameraParameter<int> &param) {
        order << "clock";
        QVERIFY(param.min <= param.value && param.value <= param.max);
        QCOMPARE(param.increment, 1);
    });
    connect(&camera, &Camera::framerateChanged, [&](CameraParameter<double> &param) {
        order << "rate";
        QVERIFY(param.min < param.max && param.increment > 0.0);
    });
    connect(&camera, &Camera::exposureChanged, [&](CameraParameter<double> &param) {
        order << "exposure";
        QVERIFY(param.min <= param.value && param.value <= param.max);
    });
    connect(&camera, &Camera::mastergainChanged, [&](CameraParameter<int> &param) {
        order << "gain";
        QCOMPARE(param.min, 0);
        QCOMPARE(param.max, 100);
    });
    camera.open(testcamera::Device);
    QCOMPARE(order, (QStringList{"clock", "rate", "exposure", "gain"}));
}

void TestCameraParameters::loadParametersReportsFailures()
{
    Camera camera;
    camera.open(testcamera::Device);
    QSignalSpy errors(&camera, &Camera::displayError);
    kelvosim::failCall("vx_LoadParameters", 1, 50, "cannot open");
    camera.loadParameters();
    QCOMPARE(errors.takeFirst().at(0).toString(), QString("Can't open ini file."));
    kelvosim::failCall("vx_LoadParameters", 1, 51, "cannot read");
    camera.loadParameters();
    QCOMPARE(errors.takeFirst().at(0).toString(), QString("cannot read"));
    kelvosim::failCall("vx_LoadParameters", 1, 51, "");
    camera.loadParameters();
    QCOMPARE(errors.takeFirst().at(0).toString(), QString("Unknown error."));
}

void TestCameraParameters::correctionOnAClosedCameraCallsNothing()
{
    Camera camera;
    kelvosim::clearLog();
    camera.setBadPixelCorrection(true);
    QVERIFY(testcamera::calls().isEmpty());
}

void TestCameraParameters::theFrameRateRangeFollowsTheFrameTimes()
{
    Camera camera;
    const Announced announced(camera);
    camera.open(testcamera::Device);
    const FrameTimes times(camera.handle());
    QVERIFY(times.min < times.max && times.step > 0.0);
    const CameraParameter<double> &rate = announced.framerate;
    QCOMPARE(rate.min, 1 / times.max);
    QCOMPARE(rate.max, 1 / times.min);
    const double steps = (times.max - times.min) / times.step;
    QCOMPARE(rate.increment, (1 / times.min - 1 / times.max) / steps);
    QCOMPARE(rate.value, camera.framesPerSecond()); // nothing is measured yet: the rate that is set
}

void TestCameraParameters::unreadableFrameTimesLeaveOneFrameASecond()
{
    Camera camera;
    const Announced announced(camera);
    kelvosim::failCall("vx_GetFrameTimeRange", 1, 61, "no range");
    camera.open(testcamera::Device);
    QCOMPARE(announced.framerate.min, 1.0);
    QCOMPARE(announced.framerate.max, 1.0);
    QVERIFY(std::isnan(announced.framerate.increment));
}

void TestCameraParameters::correctionIsSwitchedAtTheHighestFrameRate()
{
    Camera camera;
    const Announced announced(camera);
    camera.open(testcamera::Device);
    const double highest = 1.0 / FrameTimes(camera.handle()).min;
    const double before = announced.framerate.value;
    QVERIFY(before < highest);
    for (const bool enable : {true, false}) {
        kelvosim::clearLog();
        camera.setBadPixelCorrection(enable);
        const QString hotPixel = enable ? "vx_HotPixel 2" : "vx_HotPixel 0";
        QStringList calls = testcamera::calls();
        calls.replaceInStrings(QRegularExpression("^(vx_SetExposureTime) .*"), "\\1");
        QCOMPARE(calls, (QStringList{"vx_StopLiveVideo", "vx_GetFrameTimeRange", "vx_SetFrameRate", hotPixel,
                                     "vx_SetFrameRate", "vx_SetExposureTime", "vx_CaptureVideo"}));
        const auto argumentsOf = [](const char *function) {
            return testcamera::firstNumbers(testcamera::callsNamed(function));
        };
        QCOMPARE(argumentsOf("vx_StopLiveVideo"), std::vector<double>{1});
        QCOMPARE(argumentsOf("vx_SetFrameRate"), (std::vector<double>{highest, before}));
        QCOMPARE(argumentsOf("vx_SetExposureTime"), std::vector<double>{announced.exposure.value});
        QCOMPARE(argumentsOf("vx_CaptureVideo"), std::vector<double>{1});
        QCOMPARE(kelvosim::correctionOn(testcamera::Serial), enable);
    }
}

QTEST_GUILESS_MAIN(TestCameraParameters)
#include "tst_cameraparameters.moc"
