// SPDX-License-Identifier: MIT
// The sensor model: noise, hot pixels that grow with exposure and gain, light, and the correction.

#include "programside.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>

using namespace programside;

namespace {

constexpr int Rounds = 40;

/// A dark camera of moderate size with many hot pixels.
kelvosim::CameraSpec darkCamera()
{
    kelvosim::CameraSpec spec = smallCamera(true);
    spec.width = 320;
    spec.height = 240;
    spec.hotPixels = 100;
    spec.lensCap = true;
    spec.seed = 4711;
    return spec;
}

double mean(const std::vector<std::uint8_t> &pixels)
{
    double sum = 0.0;
    for (const std::uint8_t value : pixels)
        sum += value;
    return sum / static_cast<double>(pixels.size());
}

/// What a pixel reads on the average.
double level(OpenedCamera &camera, kelvosim::Pixel pixel)
{
    double sum = 0.0;
    for (int i = 0; i < Rounds; ++i)
        sum += camera.at(camera.frame(), pixel.x, pixel.y);
    return sum / Rounds;
}

int brighterThan(const std::vector<std::uint8_t> &pixels, int limit)
{
    return static_cast<int>(
        std::count_if(pixels.begin(), pixels.end(), [=](int value) { return value > limit; }));
}

void addKinds()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("mono") << static_cast<int>(kelvosim::SensorKind::Mono);
    QTest::newRow("raw Bayer") << static_cast<int>(kelvosim::SensorKind::RawBayer);
    QTest::newRow("colour") << static_cast<int>(kelvosim::SensorKind::Colour32);
}

} // namespace

class TestSensor : public QObject
{
    Q_OBJECT

private slots:
    void init() { kelvosim::reset(); }

    void theDarkIsDarkAndNoisy();
    void framesDifferInTheirNoise();
    void hotPixelsStandOutInTheDark();
    void hotPixelsGrowLinearlyWithExposure();
    void hotPixelsGrowLinearlyWithGain();
    void hotPixelsAreClippedAtWhite();
    void theSeedDecidesTheHotPixels();
    void hotPixelsKeepOffTheOutermostColumns();
    void theDarkNeverLooksLikeALightLeak_data();
    void theDarkNeverLooksLikeALightLeak();
    void lightMakesAMidGreyMovingScene_data();
    void lightMakesAMidGreyMovingScene();
    void lightGrowsWithExposureAndGain();
    void theLensCapDarkensALiveCamera();
    void correctionReplacesListedPixels_data();
    void correctionReplacesListedPixels();
    void correctionOfACameraWithoutMemoryTakesTheCurrentList();
    void correctionUsesNoListedNeighbours();
    void correctionTakesNeighboursOfTheSameColour();
    void colourGainsTintTheScene();
    void colourGainsLeaveAMonochromeSceneAlone();
    void largeFramesAreMadeInTime();
};

void TestSensor::theDarkIsDarkAndNoisy()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.hotPixels = 0;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    const std::vector<std::uint8_t> pixels = camera.frame();
    const double average = mean(pixels);
    QVERIFY2(average > 3.5 && average < 4.5, qPrintable(QString::number(average)));
    double squares = 0.0;
    for (const std::uint8_t value : pixels)
        squares += (value - average) * (value - average);
    const double deviation = std::sqrt(squares / static_cast<double>(pixels.size()));
    QVERIFY2(deviation > 0.7 && deviation < 1.4, qPrintable(QString::number(deviation)));
    QCOMPARE(brighterThan(pixels, 15), 0);
}

void TestSensor::framesDifferInTheirNoise()
{
    kelvosim::addCamera(darkCamera());
    OpenedCamera camera;
    QVERIFY(camera.frame() != camera.frame());
}

void TestSensor::hotPixelsStandOutInTheDark()
{
    kelvosim::addCamera(darkCamera());
    OpenedCamera camera;
    const double exposure = camera.setExposure(32768.0);
    const std::vector<std::uint8_t> pixels = camera.frame();
    const std::vector<kelvosim::HotPixel> planted = kelvosim::plantedHotPixels(Serial);
    QCOMPARE(planted.size(), std::size_t(100));
    int strong = 0;
    for (const kelvosim::HotPixel &hot : planted) {
        const double expected = std::min(255.0, 4.0 + hot.rate * exposure);
        QVERIFY(std::abs(camera.at(pixels, hot.at.x, hot.at.y) - expected) < 9.0);
        strong += hot.rate * exposure > 40.0;
    }
    QVERIFY2(strong > 30 && strong < 90, qPrintable(QString::number(strong)));
    QVERIFY(std::abs(brighterThan(pixels, 44) - strong) < 12);
}

void TestSensor::hotPixelsGrowLinearlyWithExposure()
{
    kelvosim::addCamera(darkCamera());
    OpenedCamera camera;
    const kelvosim::HotPixel hot = kelvosim::plantedHotPixels(Serial)[30];
    double exposure = 40.0 / hot.rate;
    const double once = camera.setExposure(exposure);
    const double low = level(camera, hot.at) - 4.0;
    const double twice = camera.setExposure(2.0 * exposure);
    const double high = level(camera, hot.at) - 4.0;
    QVERIFY2(std::abs(high / low - twice / once) < 0.08, qPrintable(QString("%1 %2").arg(low).arg(high)));
    QVERIFY(std::abs(low - hot.rate * once) < 1.5);
}

void TestSensor::hotPixelsGrowLinearlyWithGain()
{
    kelvosim::addCamera(darkCamera());
    OpenedCamera camera;
    const kelvosim::HotPixel hot = kelvosim::plantedHotPixels(Serial)[30];
    const double exposure = camera.setExposure(20.0 / hot.rate);
    for (const int gain : {0, 50, 100}) {
        vx_SetHardwareGain(camera.handle, gain, -1, -1, -1);
        const double expected = hot.rate * exposure * (1.0 + 3.0 * gain / 100.0);
        const double read = level(camera, hot.at) - 4.0;
        QVERIFY2(std::abs(read - expected) < 2.0, qPrintable(QString("%1 %2").arg(read).arg(expected)));
    }
}

void TestSensor::hotPixelsAreClippedAtWhite()
{
    kelvosim::addCamera(darkCamera());
    OpenedCamera camera;
    double rate = 0.0;
    vx_SetFrameRate(camera.handle, 10.0, &rate);
    camera.setExposure(100.0);
    vx_SetHardwareGain(camera.handle, 100, -1, -1, -1);
    const kelvosim::Pixel strongest = kelvosim::plantedHotPixels(Serial).front().at;
    QCOMPARE(camera.at(camera.frame(), strongest.x, strongest.y), std::uint8_t(255));
}

void TestSensor::theSeedDecidesTheHotPixels()
{
    const auto plantedWith = [](std::uint64_t seed, const std::string &serial) {
        kelvosim::reset();
        kelvosim::CameraSpec spec = darkCamera();
        spec.seed = seed;
        spec.serial = serial;
        kelvosim::addCamera(spec);
        std::set<std::pair<int, int>> places;
        for (const kelvosim::HotPixel &hot : kelvosim::plantedHotPixels(serial))
            places.insert({hot.at.x, hot.at.y});
        return places;
    };
    QCOMPARE(plantedWith(5, "A"), plantedWith(5, "B"));
    QVERIFY(plantedWith(5, "A") != plantedWith(6, "A"));
    QVERIFY(plantedWith(0, "A") != plantedWith(0, "B"));
    QCOMPARE(plantedWith(5, "A").size(), std::size_t(100));
}

void TestSensor::hotPixelsKeepOffTheOutermostColumns()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.width = 6;
    spec.height = 50;
    spec.hotPixels = 1000;
    kelvosim::addCamera(spec);
    const std::vector<kelvosim::HotPixel> planted = kelvosim::plantedHotPixels(Serial);
    QCOMPARE(planted.size(), std::size_t(50));
    for (const kelvosim::HotPixel &hot : planted)
        QVERIFY(hot.at.x >= 1 && hot.at.x <= 4);
}

void TestSensor::theDarkNeverLooksLikeALightLeak_data()
{
    addKinds();
}

void TestSensor::theDarkNeverLooksLikeALightLeak()
{
    QFETCH(int, kind);
    kelvosim::CameraSpec spec = darkCamera();
    spec.kind = static_cast<kelvosim::SensorKind>(kind);
    spec.width = 1280;
    spec.height = 1024;
    spec.hotPixels = 1500;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    double rate = 0.0;
    vx_SetFrameRate(camera.handle, 4.0, &rate);
    camera.setExposure(1e6);
    vx_SetHardwareGain(camera.handle, 100, -1, -1, -1);
    QVERIFY(brighterThan(camera.frame(), 100) <= 5000);
}

void TestSensor::lightMakesAMidGreyMovingScene_data()
{
    addKinds();
}

void TestSensor::lightMakesAMidGreyMovingScene()
{
    QFETCH(int, kind);
    kelvosim::CameraSpec spec = darkCamera();
    spec.kind = static_cast<kelvosim::SensorKind>(kind);
    spec.lensCap = false;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    const std::vector<std::uint8_t> first = camera.frame();
    const double bytesThatCount = camera.bits == 32 ? 4.0 / 3.0 : 1.0;
    QVERIFY2(mean(first) * bytesThatCount > 70 && mean(first) * bytesThatCount < 150,
             qPrintable(QString::number(mean(first))));
    const std::vector<std::uint8_t> second = camera.frame();
    int moved = 0;
    for (std::size_t i = 0; i < first.size(); ++i)
        moved += std::abs(first[i] - second[i]) > 15;
    QVERIFY(moved > 0);
}

void TestSensor::lightGrowsWithExposureAndGain()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.lensCap = false;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    camera.setExposure(8.0);
    const double once = mean(camera.frame());
    camera.setExposure(16.0);
    const double twice = mean(camera.frame());
    QVERIFY(twice > 1.6 * once && twice < 2.2 * once);
    camera.setExposure(8.0);
    vx_SetHardwareGain(camera.handle, 33, -1, -1, -1);
    const double amplified = mean(camera.frame());
    QVERIFY(amplified > 1.6 * once && amplified < 2.2 * once);
}

void TestSensor::theLensCapDarkensALiveCamera()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.lensCap = false;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    QVERIFY(mean(camera.frame()) > 50);
    kelvosim::setLensCap(Serial, true);
    QVERIFY(mean(camera.frame()) < 6);
    kelvosim::setLensCap(Serial, false);
    QVERIFY(mean(camera.frame()) > 50);
}

void TestSensor::correctionReplacesListedPixels_data()
{
    addKinds();
}

void TestSensor::correctionReplacesListedPixels()
{
    QFETCH(int, kind);
    kelvosim::CameraSpec spec = darkCamera();
    spec.kind = static_cast<kelvosim::SensorKind>(kind);
    spec.hotPixels = 20;
    kelvosim::addCamera(spec);
    const std::vector<kelvosim::HotPixel> planted = kelvosim::plantedHotPixels(Serial);
    QCOMPARE(kelvosim::factoryList(Serial), (std::vector<kelvosim::Pixel>{planted[0].at, planted[1].at}));
    kelvosim::setStoredUserList(Serial, {planted[2].at, {5000, 5000}, planted[3].at});
    OpenedCamera camera;
    QVERIFY(camera.at(camera.frame(), planted[0].at.x, planted[0].at.y) > 40);
    QCOMPARE(vx_HotPixel(camera.handle, 2, nullptr, 0), 0);
    QVERIFY(kelvosim::correctionOn(Serial));
    std::vector<std::uint8_t> pixels = camera.frame();
    for (std::size_t i = 0; i < 4; ++i)
        QVERIFY(camera.at(pixels, planted[i].at.x, planted[i].at.y) < 12);
    QVERIFY(camera.at(pixels, planted[4].at.x, planted[4].at.y) > 40);
    QCOMPARE(vx_HotPixel(camera.handle, 33038, nullptr, 0), 0);
    pixels = camera.frame();
    QVERIFY(camera.at(pixels, planted[1].at.x, planted[1].at.y) < 12);
    QVERIFY(camera.at(pixels, planted[2].at.x, planted[2].at.y) > 40);
    QCOMPARE(vx_HotPixel(camera.handle, 0, nullptr, 0), 0);
    QVERIFY(!kelvosim::correctionOn(Serial));
    QVERIFY(camera.at(camera.frame(), planted[0].at.x, planted[0].at.y) > 40);
}

void TestSensor::correctionOfACameraWithoutMemoryTakesTheCurrentList()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.storesLists = false;
    kelvosim::addCamera(spec);
    const kelvosim::Pixel strongest = kelvosim::plantedHotPixels(Serial).front().at;
    OpenedCamera camera;
    QCOMPARE(vx_HotPixel(camera.handle, 2, nullptr, 0), 0);
    QVERIFY(camera.at(camera.frame(), strongest.x, strongest.y) > 40);
    QCOMPARE(sendList(camera.handle, 33027, {strongest}), 0);
    QVERIFY(camera.at(camera.frame(), strongest.x, strongest.y) < 12);
}

void TestSensor::correctionUsesNoListedNeighbours()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.width = 32;
    spec.height = 3;
    spec.hotPixels = 20;
    spec.seed = 3;
    kelvosim::addCamera(spec);
    std::vector<kelvosim::Pixel> all;
    for (const kelvosim::HotPixel &hot : kelvosim::plantedHotPixels(Serial))
        all.push_back(hot.at);
    kelvosim::setFactoryList(Serial, all);
    OpenedCamera camera;
    vx_HotPixel(camera.handle, 2, nullptr, 0);
    QCOMPARE(brighterThan(camera.frame(), 14), 0);
}

void TestSensor::correctionTakesNeighboursOfTheSameColour()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.kind = kelvosim::SensorKind::RawBayer;
    spec.lensCap = false;
    spec.hotPixels = 0;
    spec.factoryList = {{100, 100}};
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    camera.setExposure(16.0);
    vx_SetHardwareGain(camera.handle, -1, 100, 0, 0);
    vx_HotPixel(camera.handle, 2, nullptr, 0);
    const std::vector<std::uint8_t> pixels = camera.frame();
    const int red = camera.at(pixels, 102, 100);
    const int green = camera.at(pixels, 101, 100);
    QVERIFY2(red > green + 30, qPrintable(QString("%1 %2").arg(red).arg(green)));
    QVERIFY(std::abs(camera.at(pixels, 100, 100) - red) < 20);
}

void TestSensor::colourGainsTintTheScene()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.kind = kelvosim::SensorKind::RawBayer;
    spec.lensCap = false;
    spec.hotPixels = 0;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    const auto sumFrom = [&camera](int x, int y) {
        const std::vector<std::uint8_t> pixels = camera.frame();
        double sum = 0.0;
        for (int row = y; row < camera.height; row += 2) {
            for (int column = x; column < camera.width; column += 2)
                sum += camera.at(pixels, column, row);
        }
        return sum;
    };
    camera.setExposure(8.0);
    const double red = sumFrom(0, 0);
    const double blue = sumFrom(1, 1);
    vx_SetHardwareGain(camera.handle, -1, 33, 0, 0);
    QVERIFY(sumFrom(0, 0) > 1.4 * red);
    QVERIFY(sumFrom(1, 1) < 1.2 * blue);
}

void TestSensor::colourGainsLeaveAMonochromeSceneAlone()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.lensCap = false;
    spec.hotPixels = 0;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    QCOMPARE(vx_SetHardwareGain(camera.handle, -1, 100, 100, 100), 0);
    const std::vector<std::uint8_t> pixels = camera.frame();
    QVERIFY(brighterThan(pixels, 100) > 0);
    QCOMPARE(brighterThan(pixels, 200), 0);
}

void TestSensor::largeFramesAreMadeInTime()
{
    kelvosim::CameraSpec spec = darkCamera();
    spec.kind = kelvosim::SensorKind::RawBayer;
    spec.width = 2592;
    spec.height = 1944;
    spec.lensCap = false;
    kelvosim::addCamera(spec);
    kelvosim::overrideFrameRate(Serial, 10000);
    OpenedCamera camera;
    camera.capture();
    QElapsedTimer timer;
    timer.start();
    QTRY_VERIFY_WITH_TIMEOUT(kelvosim::completedFrames(Serial) >= 10, 60000);
    qInfo("%g ms a frame",
          static_cast<double>(timer.elapsed()) / static_cast<double>(kelvosim::completedFrames(Serial)));
}

QTEST_GUILESS_MAIN(TestSensor)
#include "tst_sensor.moc"
