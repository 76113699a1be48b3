// SPDX-License-Identifier: MIT
// Pixel clock, frame rate, exposure and gain: bounds, steps and how they depend on one another.

#include "programside.h"

#include <QTemporaryDir>

#include <cmath>
#include <limits>
#include <string>

#include <sys/stat.h>

using namespace programside;

namespace {

struct Range
{
    double min = 0.0;
    double max = 0.0;
    double step = 0.0;
};

Range frameTimes(std::uint32_t handle)
{
    Range range;
    require(vx_GetFrameTimeRange(handle, &range.min, &range.max, &range.step), "vx_GetFrameTimeRange");
    return range;
}

Range exposures(std::uint32_t handle)
{
    Range range;
    require(vx_GetExposureRange(handle, &range.min, &range.max, &range.step), "vx_GetExposureRange");
    return range;
}

double setRate(std::uint32_t handle, double wanted)
{
    double actual = 0.0;
    require(vx_SetFrameRate(handle, wanted, &actual), "vx_SetFrameRate");
    return actual;
}

bool isWhole(double value)
{
    return std::abs(value - std::round(value)) < 1e-6;
}

} // namespace

class TestParameters : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void pixelClockHasBoundsAndADefault();
    void aFasterPixelClockShortensFrames();
    void frameRateIsCutToItsRangeAndSnapped();
    void impossibleFrameRatesAreRefused();
    void exposureIsCutToTheFrameTimeAndSnapped();
    void aShorterFrameShortensTheExposure();
    void defaultExposureIsToldAndNotSet();
    void gainHasBoundsAndIsTold();
    void aPartOfTheSensorIsFaster();
    void largeSensorsNeedASlowerPixelClockForOneFrameASecond();
    void aParameterFileIsLoaded();
    void aMissingParameterFileIsReported();
    void aBrokenParameterFileChangesNothing_data();
    void aBrokenParameterFileChangesNothing();
    void whatIsNoPlainFileIsNotOpened();
};

void TestParameters::init()
{
    kelvosim::reset();
    kelvosim::CameraSpec spec = smallCamera();
    spec.width = 1280;
    spec.height = 1024;
    kelvosim::addCamera(spec);
}

void TestParameters::pixelClockHasBoundsAndADefault()
{
    const OpenedCamera camera;
    std::int32_t min = 0;
    std::int32_t max = 0;
    QCOMPARE(vx_GetPixelClockRange(camera.handle, &min, &max), 0);
    QVERIFY(min > 0 && min < max);
    const std::int32_t preset = vx_SetPixelClock(camera.handle, 32769);
    QVERIFY(preset > min && preset < max);
    QCOMPARE(vx_SetPixelClock(camera.handle, 32768), preset);
    QCOMPARE(vx_SetPixelClock(camera.handle, max), 0);
    QCOMPARE(vx_SetPixelClock(camera.handle, 32768), max);
    QVERIFY(vx_SetPixelClock(camera.handle, max + 1) != 0);
    QVERIFY(vx_SetPixelClock(camera.handle, min - 1) != 0);
    QCOMPARE(vx_SetPixelClock(camera.handle, 32768), max);
}

void TestParameters::aFasterPixelClockShortensFrames()
{
    const OpenedCamera camera;
    vx_SetPixelClock(camera.handle, 20);
    const Range slow = frameTimes(camera.handle);
    vx_SetPixelClock(camera.handle, 40);
    const Range fast = frameTimes(camera.handle);
    QVERIFY(qFuzzyCompare(slow.min, 2 * fast.min));
    QVERIFY(qFuzzyCompare(slow.max, 2 * fast.max));
    QVERIFY(qFuzzyCompare(slow.step, 2 * fast.step));
}

void TestParameters::frameRateIsCutToItsRangeAndSnapped()
{
    const OpenedCamera camera;
    const Range range = frameTimes(camera.handle);
    QVERIFY(range.min > 1280 * 1024 / 80e6);
    QVERIFY(qFuzzyCompare(setRate(camera.handle, 1e6), 1.0 / range.min));
    QVERIFY(qFuzzyCompare(setRate(camera.handle, 1e-6), 1.0 / range.max));
    const double actual = setRate(camera.handle, 10.0);
    QVERIFY(std::abs(actual - 10.0) < 0.05);
    QVERIFY(isWhole((1.0 / actual - range.min) / range.step));
    QCOMPARE(setRate(camera.handle, actual), actual);
}

void TestParameters::impossibleFrameRatesAreRefused()
{
    const OpenedCamera camera;
    const double before = setRate(camera.handle, 5.0);
    double actual = 0.0;
    for (const double wanted :
         {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        QVERIFY(vx_SetFrameRate(camera.handle, wanted, &actual) != 0);
    QVERIFY(vx_SetExposureTime(camera.handle, std::numeric_limits<double>::quiet_NaN(), &actual) != 0);
    QVERIFY(vx_GetFramesPerSecond(camera.handle, &actual) == 0);
    QCOMPARE(actual, before);
}

void TestParameters::exposureIsCutToTheFrameTimeAndSnapped()
{
    OpenedCamera camera;
    const double frameTime = 1000.0 / setRate(camera.handle, 10.0);
    const Range range = exposures(camera.handle);
    QVERIFY(qFuzzyCompare(range.max, frameTime));
    QVERIFY(range.min > 0.0);
    QVERIFY(qFuzzyCompare(camera.setExposure(1e6), range.max));
    QVERIFY(qFuzzyCompare(camera.setExposure(-5.0), range.min));
    const double actual = camera.setExposure(20.0);
    QVERIFY(std::abs(actual - 20.0) <= range.step);
    QVERIFY(isWhole((actual - range.min) / range.step));
    QCOMPARE(camera.setExposure(32768.0), actual);
}

void TestParameters::aShorterFrameShortensTheExposure()
{
    OpenedCamera camera;
    setRate(camera.handle, 5.0);
    const double longest = camera.setExposure(1e6);
    setRate(camera.handle, 20.0);
    const double now = camera.setExposure(32768.0);
    QVERIFY(now < longest / 3);
    QVERIFY(qFuzzyCompare(now, exposures(camera.handle).max));
}

void TestParameters::defaultExposureIsToldAndNotSet()
{
    OpenedCamera camera;
    const double preset = camera.setExposure(32769.0);
    QVERIFY(preset > 0.0 && preset <= 50.5);
    const double other = camera.setExposure(5.0);
    QCOMPARE(camera.setExposure(32769.0), preset);
    QCOMPARE(camera.setExposure(32768.0), other);
}

void TestParameters::gainHasBoundsAndIsTold()
{
    const OpenedCamera camera;
    QCOMPARE(vx_SetHardwareGain(camera.handle, 32768, -1, -1, -1), 0);
    QCOMPARE(vx_SetHardwareGain(camera.handle, 70, -1, -1, -1), 0);
    QCOMPARE(vx_SetHardwareGain(camera.handle, -1, 10, 20, 30), 0);
    QCOMPARE(vx_SetHardwareGain(camera.handle, 32768, -1, -1, -1), 70);
    QVERIFY(vx_SetHardwareGain(camera.handle, 500, -1, -1, -1) != 0);
    QVERIFY(vx_SetHardwareGain(camera.handle, 50, 101, -1, -1) != 0);
    QVERIFY(vx_SetHardwareGain(camera.handle, -2, -1, -1, -1) != 0);
    QCOMPARE(vx_SetHardwareGain(camera.handle, 32768, -1, -1, -1), 70);
}

void TestParameters::aPartOfTheSensorIsFaster()
{
    const OpenedCamera camera;
    const double whole = frameTimes(camera.handle).min;
    std::int32_t area[4] = {0, 0, 320, 256};
    QCOMPARE(vx_AOI(camera.handle, 1, area, sizeof area), 0);
    QVERIFY(frameTimes(camera.handle).min < whole / 4);
}

void TestParameters::largeSensorsNeedASlowerPixelClockForOneFrameASecond()
{
    const OpenedCamera camera;
    QVERIFY(1.0 / frameTimes(camera.handle).max > 1.0);
    vx_SetPixelClock(camera.handle, 10);
    QVERIFY(1.0 / frameTimes(camera.handle).max <= 1.0);
}

void TestParameters::aParameterFileIsLoaded()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("camera.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[camera]\r\n; slow\r\npixel clock = 20\r\nframe rate = 5   # a second\r\nexposure = 12.5\r\n"
               "gain = 30\r\nred gain = 5\r\n\r\n");
    file.close();
    OpenedCamera camera;
    QCOMPARE(vx_LoadParameters(camera.handle, file.fileName().toUtf8().constData()), 0);
    QCOMPARE(vx_SetPixelClock(camera.handle, 32768), 20);
    QCOMPARE(vx_SetHardwareGain(camera.handle, 32768, -1, -1, -1), 30);
    QVERIFY(std::abs(camera.setExposure(32768.0) - 12.5) < 0.1);
}

void TestParameters::aMissingParameterFileIsReported()
{
    const OpenedCamera camera;
    QCOMPARE(vx_LoadParameters(camera.handle, "./there is no such file.ini"), 50);
}

void TestParameters::aBrokenParameterFileChangesNothing_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char *const line :
         {"gain", "exposure = long", "colour = red", "pixel clock = 32768", "pixel clock = 32769",
          "pixel clock = 4", "pixel clock = 81", "frame rate = 0", "frame rate = -3", "frame rate = nan",
          "exposure = 32768", "exposure = 32769", "exposure = -1", "gain = 32768", "gain = -1", "gain = 101",
          "red gain = 101", "blue gain = -2", "green gain = 1e2"})
        QTest::newRow(line) << QByteArray(line);
    QTest::newRow("too long") << QByteArray(2000000, '#');
}

void TestParameters::aBrokenParameterFileChangesNothing()
{
    QFETCH(QByteArray, line);
    const QTemporaryDir folder;
    const OpenedCamera camera;
    const std::int32_t clock = vx_SetPixelClock(camera.handle, 32768);
    QFile file(folder.filePath("camera.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("gain = 5\npixel clock = 20\n" + line + "\n");
    file.close();
    QCOMPARE(vx_LoadParameters(camera.handle, file.fileName().toUtf8().constData()), 51);
    QCOMPARE(vx_SetHardwareGain(camera.handle, 32768, -1, -1, -1), 0);
    QCOMPARE(vx_SetPixelClock(camera.handle, 32768), clock);
}

/// A pipe that nobody writes to would hold the call up for ever.
void TestParameters::whatIsNoPlainFileIsNotOpened()
{
    const QTemporaryDir folder;
    const QByteArray pipe = folder.filePath("pipe.ini").toUtf8();
    QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
    const OpenedCamera camera;
    QCOMPARE(vx_LoadParameters(camera.handle, pipe.constData()), 50);
    QCOMPARE(vx_LoadParameters(camera.handle, folder.path().toUtf8().constData()), 50);
    std::wstring path = QString::fromUtf8(pipe).toStdWString();
    QCOMPARE(vx_HotPixel(camera.handle, 33042, &path[0], 0), 50);
}

QTEST_GUILESS_MAIN(TestParameters)
#include "tst_parameters.moc"
