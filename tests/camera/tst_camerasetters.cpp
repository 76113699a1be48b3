// SPDX-License-Identifier: MIT
// Setting pixel clock, frame rate, exposure and gain: what is cut, announced and told to the camera, in
// order.

#include "camera.h"
#include "diary.h"
#include "testcamera.h"
#include "truncate.h"

#include <QMetaMethod>
#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();

using Setter = std::function<void(Camera &)>;

/// The same way through each of the four setters.
struct Setting
{
    const char *name;
    Setter low;  // a value that the camera can do
    Setter high; // another one
    void (Camera::*relative)(int);
};

const QVector<Setting> &settings()
{
    static const QVector<Setting> all{
        {"pixel clock", [](Camera &camera) { camera.setPixelclock(20); },
         [](Camera &camera) { camera.setPixelclock(60); }, &Camera::setPixelclockRelative},
        {"frame rate", [](Camera &camera) { camera.setFramerate(100.0); },
         [](Camera &camera) { camera.setFramerate(200.0); }, &Camera::setFramerateRelative},
        {"exposure", [](Camera &camera) { camera.setExposure(1.0); },
         [](Camera &camera) { camera.setExposure(2.0); }, &Camera::setExposureRelative},
        {"master gain", [](Camera &camera) { camera.setMastergain(10); },
         [](Camera &camera) { camera.setMastergain(20); }, nullptr},
    };
    return all;
}

/// One row a setting; with `relativeOnly` only those that have a relative setter.
void addSettingRows(bool relativeOnly = false)
{
    QTest::addColumn<int>("setting");
    for (int i = 0; i < settings().size(); ++i) {
        if (settings()[i].relative || !relativeOnly)
            QTest::newRow(settings()[i].name) << i;
    }
}

/// Calls back at each announcement of the setting with this number, not counting refreshes of others.
void connectTo(Camera &camera, int setting, const std::function<void()> &receiver)
{
    const auto call = [receiver] { receiver(); };
    if (setting == 0)
        QObject::connect(&camera, &Camera::pixelclockChanged, call);
    else if (setting == 1)
        QObject::connect(&camera, &Camera::framerateChanged, call);
    else if (setting == 2)
        QObject::connect(&camera, &Camera::exposureChanged, call);
    else
        QObject::connect(&camera, &Camera::mastergainChanged, call);
}

/// Lines of 3.3 ms at the slowest pixel clock, so that whole milliseconds are well within the ranges.
kelvosim::CameraSpec slow()
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.width = 16384;
    spec.height = 16;
    return spec;
}

} // namespace

class TestCameraSetters : public QObject
{
    Q_OBJECT

private slots:
    void init() { testcamera::resetTo(testcamera::small()); }

    void theSlotsAreDeclaredInOrder();

    void aPixelClockBelowTheMinimumSetsTheMinimumAndAnnouncesEachSettingOnce();
    void aPixelClockAboveTheMaximumSetsTheMaximum();
    void theCurrentPixelClockIsNotAnnouncedButToldAndRefreshed();
    void aFrameRateIsToldBeforeItIsAnnounced();
    void aFrameRateIsAnnouncedAsTheCameraSetIt();
    void theCurrentFrameRateIsNotToldButTheExposureIsRefreshed();
    void anExposureIsAnnouncedBeforeItIsTold();
    void whatTheCameraMakesOfAnExposureIsKeptWithoutAnnouncement();
    void theCurrentExposureIsToldAgain();
    void aMasterGainIsCutAnnouncedAndTold();
    void theCurrentMasterGainIsToldAgain();

    void aRangeUpsideDownSetsItsMinimum();
    void whatIsNoNumberSetsTheMaximum();
    void infiniteValuesSetTheEndsOfTheRange();

    void aSetterIsIgnoredWhileItRuns_data() { addSettingRows(); }
    void aSetterIsIgnoredWhileItRuns();
    void aRelativeSetterIsIgnoredToo_data() { addSettingRows(true); }
    void aRelativeSetterIsIgnoredToo();
    void aSetterOfAnotherCameraIsIgnoredMeanwhile_data() { addSettingRows(); }
    void aSetterOfAnotherCameraIsIgnoredMeanwhile();
    void aSetterOfAClosedCameraCallsNothing_data() { addSettingRows(); }
    void aSetterOfAClosedCameraCallsNothing();
    void theOtherSettersWorkMeanwhile();
    void anExceptionOfAReceiverLeavesTheSetterUsable_data() { addSettingRows(); }
    void anExceptionOfAReceiverLeavesTheSetterUsable();
    void aReceiverThatAnswersEveryAnnouncementEndsInOneRound();

    void aRelativePixelClockIsAStepNumberTakenAsTheValue();
    void aRelativeFrameRateIsAStepNumberTakenAsTheValue();
    void aRelativeExposureIsAStepNumberTakenAsTheValue();
    void relativeValuesAtTheEndsOfTheIntegersAreSafe_data();
    void relativeValuesAtTheEndsOfTheIntegersAreSafe();
    void anIncrementOfZeroIsSafe();
    void anIncrementThatIsNoNumberGivesStepZero();

    void failuresOfTheLibraryAreIgnored();

    void truncationIsDefinedForEveryNumber_data();
    void truncationIsDefinedForEveryNumber();
};

void TestCameraSetters::theSlotsAreDeclaredInOrder()
{
    QStringList slotNames;
    const QMetaObject &meta = Camera::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Slot)
            slotNames << meta.method(i).methodSignature();
    }
    QCOMPARE(slotNames,
             (QStringList{"setPixelclock(int)", "setPixelclockRelative(int)", "setFramerate(double)",
                          "setFramerateRelative(int)", "setExposure(double)", "setExposureRelative(int)",
                          "setMastergain(int)", "setBadPixelCorrection(bool)", "updatePixelclock()",
                          "updateFramerate()", "updateExposure()", "updateMastergain()", "setAutoConfig()",
                          "eventReceived(int)"}));
}

void TestCameraSetters::aPixelClockBelowTheMinimumSetsTheMinimumAndAnnouncesEachSettingOnce()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setPixelclock(-3);
    QCOMPARE(diary.entries(), (QStringList{"pixelclock 5", "vx_SetPixelClock 5"}) + framerateRefresh());
    QCOMPARE(diary.pixelclock.min, 5);
}

void TestCameraSetters::aPixelClockAboveTheMaximumSetsTheMaximum()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setPixelclock(Highest);
    QCOMPARE(diary.entries(), (QStringList{"pixelclock 80", "vx_SetPixelClock 80"}) + framerateRefresh());
    QCOMPARE(vx_SetPixelClock(camera.handle(), 32768), 80);
}

void TestCameraSetters::theCurrentPixelClockIsNotAnnouncedButToldAndRefreshed()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setPixelclock(40);
    QCOMPARE(diary.entries(), (QStringList{"vx_SetPixelClock 40"}) + framerateRefresh());
}

void TestCameraSetters::aFrameRateIsToldBeforeItIsAnnounced()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setFramerate(100.0);
    QCOMPARE(diary.entries(), (QStringList{"vx_SetFrameRate", "framerate"}) + exposureRefresh());
}

void TestCameraSetters::aFrameRateIsAnnouncedAsTheCameraSetIt()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setFramerate(100.03);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{100.03});
    QVERIFY(diary.framerate.value != 100.03);
    QVERIFY(std::abs(diary.framerate.value - 100.03) < 0.1); // snapped to whole lines
    camera.setFramerate(0.0);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{diary.framerate.min});
}

void TestCameraSetters::theCurrentFrameRateIsNotToldButTheExposureIsRefreshed()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setFramerate(100.0);
    diary.begin();
    camera.setFramerate(diary.framerate.value);
    QCOMPARE(diary.entries(), exposureRefresh());
}

void TestCameraSetters::anExposureIsAnnouncedBeforeItIsTold()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setExposure(2.0);
    QCOMPARE(diary.entries(), (QStringList{"exposure", "vx_SetExposureTime"}));
    QCOMPARE(diary.exposure.value, 2.0);
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{2.0});
}

void TestCameraSetters::whatTheCameraMakesOfAnExposureIsKeptWithoutAnnouncement()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    camera.setExposure(2.0);
    const double made = kelvosim::exposureTime(testcamera::Serial);
    QVERIFY(made != 2.0);
    diary.begin();
    camera.setExposure(made);
    QCOMPARE(diary.entries(), QStringList{"vx_SetExposureTime"});
}

void TestCameraSetters::theCurrentExposureIsToldAgain()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    diary.begin();
    camera.setExposure(Infinity); // the default exposure is the longest that the frame rate lets in
    QCOMPARE(diary.entries(), QStringList{"vx_SetExposureTime"});
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{diary.exposure.max});
}

void TestCameraSetters::aMasterGainIsCutAnnouncedAndTold()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setMastergain(101);
    camera.setMastergain(-1);
    QCOMPARE(diary.entries(), (QStringList{"mastergain 100", "vx_SetHardwareGain 100", "mastergain 0",
                                           "vx_SetHardwareGain 0"}));
    QCOMPARE(lastCall("vx_SetHardwareGain").numbers, (std::vector<double>{-1, -1, -1}));
}

void TestCameraSetters::theCurrentMasterGainIsToldAgain()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    camera.setMastergain(30);
    diary.begin();
    camera.setMastergain(30);
    QCOMPARE(diary.entries(), QStringList{"vx_SetHardwareGain 30"});
}

void TestCameraSetters::aRangeUpsideDownSetsItsMinimum()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    connect(&camera, &Camera::mastergainChanged, [](CameraParameter<int> &param) { param.min = 200; });
    camera.updateMastergain();
    for (const int value : {0, 150, 199}) {
        camera.setMastergain(value);
        QCOMPARE(lastCall("vx_SetHardwareGain").command, 200);
    }
    camera.setMastergain(300); // not below the minimum, so the maximum cuts it
    QCOMPARE(lastCall("vx_SetHardwareGain").command, 100);
}

void TestCameraSetters::whatIsNoNumberSetsTheMaximum()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setFramerate(NotANumber);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{diary.framerate.max});
    camera.setExposure(NotANumber);
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{diary.exposure.max});
}

void TestCameraSetters::infiniteValuesSetTheEndsOfTheRange()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setFramerate(Infinity);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{diary.framerate.max});
    camera.setFramerate(-Infinity);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{diary.framerate.min});
    camera.setExposure(-Infinity);
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{diary.exposure.min});
}

void TestCameraSetters::aSetterIsIgnoredWhileItRuns()
{
    QFETCH(int, setting);
    const Setting &tested = settings()[setting];
    Camera camera;
    camera.open(testcamera::Device);
    Diary undisturbed(camera);
    undisturbed.begin();
    tested.low(camera);
    const QStringList expected = undisturbed.entries();
    camera.close();
    camera.open(testcamera::Device);

    Diary diary(camera);
    int announced = 0;
    connectTo(camera, setting, [&] {
        ++announced;
        tested.high(camera);
    });
    diary.begin();
    tested.low(camera);
    QCOMPARE(diary.entries(), expected);
    QCOMPARE(announced, 1);
}

void TestCameraSetters::aRelativeSetterIsIgnoredToo()
{
    QFETCH(int, setting);
    const Setting &tested = settings()[setting];
    Camera camera;
    camera.open(testcamera::Device);
    int announced = 0;
    int callsMeanwhile = 0;
    connectTo(camera, setting, [&] {
        ++announced;
        const int before = testcamera::calls().size();
        (camera.*tested.relative)(7);
        callsMeanwhile += testcamera::calls().size() - before;
    });
    tested.low(camera);
    QCOMPARE(announced, 1);
    QCOMPARE(callsMeanwhile, 0);
}

void TestCameraSetters::aSetterOfAnotherCameraIsIgnoredMeanwhile()
{
    QFETCH(int, setting);
    const Setting &tested = settings()[setting];
    kelvosim::CameraSpec second = testcamera::small();
    second.serial = "KVTEST00002";
    second.deviceId = testcamera::Device + 1;
    kelvosim::addCamera(second);
    Camera camera;
    Camera other;
    camera.open(testcamera::Device);
    other.open(testcamera::Device + 1);
    int callsMeanwhile = 0;
    connectTo(camera, setting, [&] {
        const int before = testcamera::calls().size();
        tested.high(other);
        callsMeanwhile += testcamera::calls().size() - before;
    });
    tested.low(camera);
    QCOMPARE(callsMeanwhile, 0);
    const int before = testcamera::calls().size();
    tested.high(other);
    QVERIFY(testcamera::calls().size() > before); // it does call the library once the first one is done
}

void TestCameraSetters::aSetterOfAClosedCameraCallsNothing()
{
    QFETCH(int, setting);
    const Setting &tested = settings()[setting];
    Camera camera;
    Diary diary(camera);
    diary.begin();
    tested.high(camera);
    camera.setAutoConfig();
    QVERIFY(diary.entries().isEmpty());
}

void TestCameraSetters::theOtherSettersWorkMeanwhile()
{
    Camera camera;
    camera.open(testcamera::Device);
    connect(&camera, &Camera::mastergainChanged, [&] {
        camera.setPixelclock(20);
        camera.setFramerate(100.0);
        camera.setExposure(2.0);
    });
    camera.setMastergain(10);
    QCOMPARE(vx_SetPixelClock(camera.handle(), 32768), 20);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{100.0});
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{2.0});
}

void TestCameraSetters::anExceptionOfAReceiverLeavesTheSetterUsable()
{
    QFETCH(int, setting);
    const Setting &tested = settings()[setting];
    Camera camera;
    camera.open(testcamera::Device);
    bool throws = true;
    connectTo(camera, setting, [&] {
        if (throws)
            throw std::runtime_error("receiver");
    });
    QVERIFY_EXCEPTION_THROWN(tested.low(camera), std::runtime_error);
    throws = false;
    kelvosim::clearLog();
    tested.high(camera);
    QVERIFY(!testcamera::calls().isEmpty());
}

/// What happens at opening: controls that rise from an old range report another value than was announced.
void TestCameraSetters::aReceiverThatAnswersEveryAnnouncementEndsInOneRound()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    connect(&camera, &Camera::framerateChanged,
            [&](CameraParameter<double> &param) { camera.setFramerate(param.value + 10.0); });
    connect(&camera, &Camera::exposureChanged,
            [&](CameraParameter<double> &param) { camera.setExposure(param.value / 2); });
    diary.begin();
    camera.updateFramerate();
    // Announced, answered by the control and announced again, where the flag ends it. Every refresh of the
    // exposure is answered the same way.
    const QStringList exposureRound = exposureRefresh() + QStringList{"exposure", "vx_SetExposureTime"};
    const QStringList expected = QStringList{"vx_GetFrameTimeRange"} +
                                 QStringList{"vx_SetFrameRate", "framerate"} +
                                 QStringList{"vx_SetFrameRate", "framerate"} + exposureRound + exposureRound;
    QCOMPARE(diary.entries(), expected);
}

void TestCameraSetters::aRelativePixelClockIsAStepNumberTakenAsTheValue()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    camera.setPixelclockRelative(30);
    QCOMPARE(diary.pixelclock.value, 25);
    camera.setPixelclockRelative(7); // 2, cut to the minimum
    QCOMPARE(diary.pixelclock.value, 5);
    camera.setPixelclockRelative(85);
    QCOMPARE(diary.pixelclock.value, 80);
}

void TestCameraSetters::aRelativeFrameRateIsAStepNumberTakenAsTheValue()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setFramerateRelative(100);
    const double steps = (100.0 - diary.framerate.min) / diary.framerate.increment;
    QVERIFY(steps > diary.framerate.min && steps < diary.framerate.max && steps != std::floor(steps));
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{std::floor(steps)});
}

void TestCameraSetters::aRelativeExposureIsAStepNumberTakenAsTheValue()
{
    testcamera::resetTo(slow());
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setPixelclock(5);
    camera.setFramerate(0.1);
    camera.setExposureRelative(100);
    const double steps = (100.0 - diary.exposure.min) / diary.exposure.increment;
    QVERIFY(steps > diary.exposure.min && steps < diary.exposure.max && steps != std::floor(steps));
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{std::floor(steps)});
    camera.setExposureRelative(0); // a bit below step 0 is cut toward it
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{diary.exposure.min});
}

void TestCameraSetters::relativeValuesAtTheEndsOfTheIntegersAreSafe_data()
{
    QTest::addColumn<int>("min");
    QTest::addColumn<int>("increment");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("wanted");
    QTest::newRow("difference too large") << -10 << 1 << Highest << Highest;
    QTest::newRow("difference too small") << 10 << 1 << Lowest << 10;
    QTest::newRow("lowest by minus one") << 0 << -1 << Lowest << Highest;
    QTest::newRow("toward zero") << -1000 << 3 << -1005 << -1;
    QTest::newRow("exact") << Lowest << 1 << -1 << Highest;
    QTest::newRow("exact by three") << Lowest << 3 << Highest << 1431655765;
}

void TestCameraSetters::relativeValuesAtTheEndsOfTheIntegersAreSafe()
{
    QFETCH(int, min);
    QFETCH(int, increment);
    QFETCH(int, value);
    QFETCH(int, wanted);
    Camera camera;
    camera.open(testcamera::Device);
    const auto widen = connect(&camera, &Camera::pixelclockChanged, [&](CameraParameter<int> &param) {
        param = {min, Highest, increment, 40};
    });
    camera.updatePixelclock();
    disconnect(widen);
    camera.setPixelclockRelative(value);
    QCOMPARE(lastCall("vx_SetPixelClock").command, std::int64_t(wanted));
}

void TestCameraSetters::anIncrementOfZeroIsSafe()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    connect(&camera, &Camera::pixelclockChanged, [](CameraParameter<int> &param) { param.increment = 0; });
    camera.updatePixelclock();
    camera.setPixelclockRelative(6);
    QCOMPARE(diary.pixelclock.value, 80);
    camera.setPixelclockRelative(4);
    QCOMPARE(diary.pixelclock.value, 5);
    camera.setPixelclock(40);
    camera.setPixelclockRelative(5); // no step at all
    QCOMPARE(diary.pixelclock.value, 5);
}

void TestCameraSetters::anIncrementThatIsNoNumberGivesStepZero()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    kelvosim::failCall("vx_GetFrameTimeRange", kelvosim::EveryCall, 1, "unreadable");
    camera.updateFramerate();
    QVERIFY(std::isnan(diary.framerate.increment));
    camera.setFramerateRelative(1000);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{1.0}); // 0, cut to the range 1 to 1
}

void TestCameraSetters::failuresOfTheLibraryAreIgnored()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    kelvosim::failNthCall(1, true, 1, "unplugged");
    diary.begin();
    camera.setPixelclock(20);
    camera.setFramerate(50.0);
    camera.setExposure(2.0);
    camera.setMastergain(20);
    const QStringList expected =
        QStringList({"pixelclock 20", "vx_SetPixelClock 20"}) + framerateRefresh() +
        QStringList{"vx_SetFrameRate", "framerate"} + exposureRefresh() +
        QStringList{"exposure", "vx_SetExposureTime", "mastergain 20", "vx_SetHardwareGain 20"};
    QCOMPARE(diary.entries(), expected);
    QCOMPARE(diary.framerate.value, 1.0); // the range is 1 to 1 as long as it cannot be read
    QCOMPARE(diary.exposure.value, 2.0);
    kelvosim::clearFaults();
}

void TestCameraSetters::truncationIsDefinedForEveryNumber_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("down") << 2.99 << 2;
    QTest::newRow("up") << -2.99 << -2;
    QTest::newRow("highest") << 2147483647.0 << Highest;
    QTest::newRow("highest and a bit") << 2147483647.9 << Highest;
    QTest::newRow("below highest") << 2147483646.9 << Highest - 1;
    QTest::newRow("lowest") << -2147483648.0 << Lowest;
    QTest::newRow("lowest and a bit") << -2147483648.9 << Lowest;
    QTest::newRow("above lowest") << -2147483647.9 << Lowest + 1;
    QTest::newRow("too large") << 1e300 << Highest;
    QTest::newRow("too small") << -1e300 << Lowest;
    QTest::newRow("infinite") << Infinity << Highest;
    QTest::newRow("infinite down") << -Infinity << Lowest;
    QTest::newRow("no number") << NotANumber << 0;
}

void TestCameraSetters::truncationIsDefinedForEveryNumber()
{
    QFETCH(double, value);
    QTEST(truncated(value), "expected");
}

QTEST_GUILESS_MAIN(TestCameraSetters)
#include "tst_camerasetters.moc"
