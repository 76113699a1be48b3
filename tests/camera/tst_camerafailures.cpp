// SPDX-License-Identifier: MIT
// Every library call of open() fails in turn: the camera is closed, nothing is held, the text is exact.

#include "camera.h"
#include "testcamera.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <stdexcept>

namespace {

constexpr const char *LibraryText = "the library's own words";
constexpr const char *NoText = "Unknown error.";

/// What open() throws; empty when it does not.
QString failureOf(Camera &camera, int device = testcamera::Device)
{
    try {
        camera.open(device);
    } catch (const std::runtime_error &failure) {
        return failure.what();
    }
    return QString();
}

/// What close() calls for a camera that got so far.
QStringList callsOfClosing(bool eventsStarted, int buffers)
{
    QStringList calls{"vx_StopLiveVideo"};
    if (eventsStarted)
        calls << "vx_Event 5";
    if (buffers > 0)
        calls << "vx_ClearSequence";
    for (int i = 0; i < buffers; ++i)
        calls << "vx_FreeImageMem";
    return calls << "vx_ExitCamera";
}

/// The calls of this thread after the last one of this function.
QStringList callsAfter(const QString &function)
{
    return testcamera::calls().mid(testcamera::plainCalls().lastIndexOf(function) + 1);
}

/// Counts what a camera emits when it is closed.
class Closings : public QObject
{
public:
    explicit Closings(Camera &camera)
    {
        connect(&camera, &Camera::newImage, this,
                [this](QImage &image) { nullImages += image.isNull() ? 1 : 0; });
        connect(&camera, &Camera::cameraClosed, this, [this] { ++closed; });
    }

    int nullImages = 0;
    int closed = 0;
};

} // namespace

class TestCameraFailures : public QObject
{
    Q_OBJECT

private slots:
    void init() { testcamera::resetTo(testcamera::small()); }

    void eachFailingCallLeavesTheCameraClosed_data();
    void eachFailingCallLeavesTheCameraClosed();
    void failingEventsDoNotKeepACameraFromOpening_data();
    void failingEventsDoNotKeepACameraFromOpening();
    void ignoredFailuresDoNotKeepACameraFromOpening_data();
    void ignoredFailuresDoNotKeepACameraFromOpening();
    void aFailedOpenWhileOpenLeavesNothingOpen();
    void anUnknownColourModeIsRefused_data();
    void anUnknownColourModeIsRefused();
    void refusedSensorsLeaveNoHandleOpen_data();
    void refusedSensorsLeaveNoHandleOpen();
    void aFailedRetryAfterAFirmwareUploadIsReported();
    void aHandleOfNoCameraIsNoSuccess();
    void aFrameInForeignMemoryIsDropped_data();
    void aFrameInForeignMemoryIsDropped();
};

void TestCameraFailures::eachFailingCallLeavesTheCameraClosed_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<int>("nth");
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("fixedText"); // empty: the library's text
    QTest::addColumn<QStringList>("callsAfterwards");

    const int any = static_cast<int>(kelvosim::AnyCommand);
    const QStringList noBuffer = callsOfClosing(false, 0);
    const QStringList complete = callsOfClosing(true, 3);
    QTest::newRow("init") << "vx_InitCamera" << 1 << any << "Could not initialize camera." << QStringList();
    QTest::newRow("sensor") << "vx_GetSensorInfo" << 1 << any << "" << noBuffer;
    QTest::newRow("colour mode") << "vx_SetColorMode" << 1 << 11 << "" << noBuffer;
    QTest::newRow("maximum size") << "vx_AOI" << 1 << 16 << "" << noBuffer;
    QTest::newRow("image area") << "vx_AOI" << 1 << 1 << "" << noBuffer;
    for (int n = 1; n <= 3; ++n) {
        const QStringList joined = callsOfClosing(false, n - 1);
        QTest::addRow("memory %d", n)
            << "vx_AllocImageMem" << n << any << "Can't allocate image memory." << joined;
        QTest::addRow("sequence %d", n) << "vx_AddToSequence" << n << any << "Can't add buffer to sequence."
                                        << QStringList{"vx_FreeImageMem"} + joined;
    }
    QTest::newRow("capture") << "vx_CaptureVideo" << 1 << any << "" << complete;
    QTest::newRow("frame rate") << "vx_GetFramesPerSecond" << 1 << any << "" << complete;
    QTest::newRow("default exposure") << "vx_SetExposureTime" << 1 << 32769 << "" << complete;
    QTest::newRow("clock range") << "vx_GetPixelClockRange" << 1 << any << "" << complete;
    QTest::newRow("clock") << "vx_SetPixelClock" << 2 << any << "" << complete;
}

void TestCameraFailures::eachFailingCallLeavesTheCameraClosed()
{
    QFETCH(QString, function);
    QFETCH(int, nth);
    QFETCH(int, command);
    QFETCH(QString, fixedText);
    QFETCH(QStringList, callsAfterwards);

    Camera camera;
    const int closings = callsAfterwards.isEmpty() ? 0 : 1;
    for (const char *text : {LibraryText, ""}) {
        const Closings counted(camera);
        kelvosim::failCall(function.toStdString(), nth, 61, text, command);
        kelvosim::clearLog();
        const QString expected = !fixedText.isEmpty() ? fixedText : *text ? QString(text) : QString(NoText);
        QCOMPARE(failureOf(camera), expected);
        QVERIFY(!camera.isOpen());
        QCOMPARE(callsAfter(function), callsAfterwards);
        QCOMPARE(counted.nullImages, closings);
        QCOMPARE(counted.closed, closings);
        QVERIFY(testcamera::nothingHeld());
        kelvosim::clearFaults();
        QCOMPARE(failureOf(camera), QString());
        QVERIFY(camera.isOpen());
        camera.close();
        QVERIFY(testcamera::nothingHeld());
    }
}

void TestCameraFailures::failingEventsDoNotKeepACameraFromOpening_data()
{
    QTest::addColumn<int>("command");
    QTest::newRow("register") << 1;
    QTest::newRow("enable") << 3;
}

void TestCameraFailures::failingEventsDoNotKeepACameraFromOpening()
{
    QFETCH(int, command);
    Camera camera;
    kelvosim::failCall("vx_Event", 1, 5, LibraryText, command);
    QCOMPARE(failureOf(camera), QString());
    QVERIFY(camera.isOpen());
    kelvosim::clearLog();
    camera.close();
    QCOMPARE(testcamera::calls(), callsOfClosing(false, 3)); // no thread is there to be woken
}

void TestCameraFailures::ignoredFailuresDoNotKeepACameraFromOpening_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<int>("nth");
    QTest::addColumn<int>("command");

    const int any = static_cast<int>(kelvosim::AnyCommand);
    QTest::newRow("correction off") << "vx_HotPixel" << 1 << 0;
    QTest::newRow("frame times") << "vx_GetFrameTimeRange" << 1 << any;
    QTest::newRow("frame rate") << "vx_SetFrameRate" << 1 << any;
    QTest::newRow("exposure range") << "vx_GetExposureRange" << 1 << any;
    QTest::newRow("present exposure") << "vx_SetExposureTime" << 1 << 32768;
    QTest::newRow("exposure") << "vx_SetExposureTime" << 3 << any;
    QTest::newRow("gain") << "vx_SetHardwareGain" << 1 << 32768;
}

void TestCameraFailures::ignoredFailuresDoNotKeepACameraFromOpening()
{
    QFETCH(QString, function);
    QFETCH(int, nth);
    QFETCH(int, command);
    Camera camera;
    QSignalSpy errors(&camera, &Camera::displayError);
    int gains = 0;
    connect(&camera, &Camera::mastergainChanged, [&] { ++gains; });
    kelvosim::failCall(function.toStdString(), nth, 61, LibraryText, command);
    kelvosim::clearLog();
    QCOMPARE(failureOf(camera), QString());
    QVERIFY(camera.isOpen());
    const std::vector<kelvosim::Call> calls = testcamera::callsNamed(function.toStdString());
    QVERIFY(std::any_of(calls.begin(), calls.end(), [](const auto &call) { return call.result == 61; }));
    QCOMPARE(testcamera::calls().last(), QString("vx_SetHardwareGain 32768")); // all steps to the last one
    QCOMPARE(gains, 1);
    QCOMPARE(errors.count(), 0);
}

void TestCameraFailures::aFailedOpenWhileOpenLeavesNothingOpen()
{
    Camera camera;
    camera.open(testcamera::Device);
    const Closings counted(camera);
    kelvosim::clearLog();
    QCOMPARE(failureOf(camera, testcamera::Device + 1), QString("Could not initialize camera."));
    QCOMPARE(testcamera::calls(), callsOfClosing(true, 3) + QStringList{"vx_InitCamera"});
    QVERIFY(!camera.isOpen());
    QVERIFY(testcamera::nothingHeld());
    QCOMPARE(counted.nullImages, 1);
    QCOMPARE(counted.closed, 1);
}

void TestCameraFailures::anUnknownColourModeIsRefused_data()
{
    QTest::addColumn<int>("mode");
    for (const int mode : {-1, 1, 7, 8, 12, 32768})
        QTest::addRow("%d", mode) << mode;
}

void TestCameraFailures::anUnknownColourModeIsRefused()
{
    QFETCH(int, mode);
    Camera camera;
    kelvosim::failCall("vx_SetColorMode", 1, mode, LibraryText, 32768);
    QCOMPARE(failureOf(camera), QString("Color Mode not supported."));
    QVERIFY(testcamera::nothingHeld());
}

void TestCameraFailures::refusedSensorsLeaveNoHandleOpen_data()
{
    QTest::addColumn<int>("sensor");
    QTest::newRow("77") << 0x4D;
    QTest::newRow("541") << 0x21D;
    QTest::newRow("523") << 0x20B;
}

void TestCameraFailures::refusedSensorsLeaveNoHandleOpen()
{
    QFETCH(int, sensor);
    kelvosim::CameraSpec spec = testcamera::small();
    spec.sensorId = static_cast<std::uint16_t>(sensor);
    testcamera::resetTo(spec);
    Camera camera;
    const Closings counted(camera);
    kelvosim::clearLog();
    QCOMPARE(failureOf(camera), QString("Unsupported camera type"));
    QCOMPARE(testcamera::calls(), (QStringList{"vx_InitCamera", "vx_GetSensorInfo", "vx_ExitCamera"}));
    QVERIFY(!camera.isOpen());
    QVERIFY(testcamera::nothingHeld());
    QCOMPARE(counted.nullImages, 0);
    QCOMPARE(counted.closed, 0);
}

void TestCameraFailures::aFailedRetryAfterAFirmwareUploadIsReported()
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.firmwareUpload = 25000; // nobody waits for it: the retry fails at once
    testcamera::resetTo(spec);
    Camera camera;
    QSignalSpy errors(&camera, &Camera::displayError);
    kelvosim::failCall("vx_InitCamera", 2, 9, LibraryText);
    QCOMPARE(failureOf(camera), QString("Could not initialize camera."));
    QCOMPARE(errors.count(), 1);
    QCOMPARE(errors.first().at(0).toString(),
             QString("Upload of new firmware required. (approx. 25 seconds)"));
    QVERIFY(!camera.isOpen());
    QVERIFY(testcamera::nothingHeld());
}

void TestCameraFailures::aHandleOfNoCameraIsNoSuccess()
{
    kelvosim::overrideNumber("vx_InitCamera", 0, 0);
    kelvosim::failCall("vx_InitCamera", 1, 1, "");
    kelvosim::overrideResult("vx_InitCamera", 0);
    Camera camera;
    kelvosim::clearLog();
    QCOMPARE(failureOf(camera), QString("Could not initialize camera."));
    QVERIFY(!camera.isOpen());
    QCOMPARE(testcamera::calls(), QStringList{"vx_InitCamera"});
}

void TestCameraFailures::aFrameInForeignMemoryIsDropped_data()
{
    QTest::addColumn<bool>("isNull");
    QTest::newRow("null") << true;
    QTest::newRow("foreign") << false;
}

/// Like a frame that cannot be locked, and before the library is asked to.
void TestCameraFailures::aFrameInForeignMemoryIsDropped()
{
    QFETCH(bool, isNull);
    char foreign = 0;
    Camera camera;
    camera.open(testcamera::Device);
    kelvosim::overridePointer("vx_GetActSeqBuf", isNull ? nullptr : &foreign);
    kelvosim::overrideResult("vx_LockSeqBuf", 0);
    QSignalSpy images(&camera, &Camera::newImage);
    QSignalSpy errors(&camera, &Camera::displayError);
    kelvosim::clearLog();
    QVERIFY(kelvosim::pushFrame(testcamera::Serial, {}));
    QTRY_COMPARE(camera.frameCount(), 1);
    QCOMPARE(testcamera::calls(), QStringList{"vx_GetActSeqBuf"});
    QCOMPARE(images.count(), 0);
    QCOMPARE(errors.count(), 0);

    kelvosim::tellTheTruth();
    QVERIFY(kelvosim::pushFrame(testcamera::Serial, {}));
    QTRY_COMPARE(images.count(), 1);
}

QTEST_GUILESS_MAIN(TestCameraFailures)
#include "tst_camerafailures.moc"
