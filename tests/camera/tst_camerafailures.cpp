// SPDX-License-Identifier: MIT
// Every library call of open() fails in turn: the camera is closed, nothing is held, the text is exact.

#include "camera.h"
#include "testcamera.h"

#include <QSignalSpy>
#include <QtTest>

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
    void anUnknownColourModeIsRefused_data();
    void anUnknownColourModeIsRefused();
    void refusedSensorsLeaveNoHandleOpen_data();
    void refusedSensorsLeaveNoHandleOpen();
    void aFailedRetryAfterAFirmwareUploadIsReported();
    void closeCallsAfterALateFailure();
};

void TestCameraFailures::eachFailingCallLeavesTheCameraClosed_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<int>("nth");
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("fixedText"); // empty: the library's text

    const int any = static_cast<int>(kelvosim::AnyCommand);
    QTest::newRow("init") << "vx_InitCamera" << 1 << any << "Could not initialize camera.";
    QTest::newRow("sensor") << "vx_GetSensorInfo" << 1 << any << "";
    QTest::newRow("colour mode") << "vx_SetColorMode" << 1 << 11 << "";
    QTest::newRow("maximum size") << "vx_AOI" << 1 << 16 << "";
    QTest::newRow("image area") << "vx_AOI" << 1 << 1 << "";
    for (int n = 1; n <= 3; ++n) {
        QTest::addRow("memory %d", n) << "vx_AllocImageMem" << n << any << "Can't allocate image memory.";
        QTest::addRow("sequence %d", n) << "vx_AddToSequence" << n << any << "Can't add buffer to sequence.";
    }
    QTest::newRow("capture") << "vx_CaptureVideo" << 1 << any << "";
    QTest::newRow("frame rate") << "vx_GetFramesPerSecond" << 1 << any << "";
    QTest::newRow("default exposure") << "vx_SetExposureTime" << 1 << 32769 << "";
    QTest::newRow("clock range") << "vx_GetPixelClockRange" << 1 << any << "";
    QTest::newRow("clock") << "vx_SetPixelClock" << 2 << any << "";
}

void TestCameraFailures::eachFailingCallLeavesTheCameraClosed()
{
    QFETCH(QString, function);
    QFETCH(int, nth);
    QFETCH(int, command);
    QFETCH(QString, fixedText);

    Camera camera;
    for (const char *text : {LibraryText, ""}) {
        kelvosim::failCall(function.toStdString(), nth, 61, text, command);
        const QString expected = !fixedText.isEmpty() ? fixedText : *text ? QString(text) : QString(NoText);
        QCOMPARE(failureOf(camera), expected);
        QVERIFY(!camera.isOpen());
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
    QSignalSpy closed(&camera, &Camera::cameraClosed);
    kelvosim::clearLog();
    QCOMPARE(failureOf(camera), QString("Unsupported camera type"));
    QCOMPARE(testcamera::calls(), (QStringList{"vx_InitCamera", "vx_GetSensorInfo", "vx_ExitCamera"}));
    QVERIFY(!camera.isOpen());
    QVERIFY(testcamera::nothingHeld());
    QCOMPARE(closed.count(), 0);
}

void TestCameraFailures::aFailedRetryAfterAFirmwareUploadIsReported()
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.firmwareUpload = 10;
    testcamera::resetTo(spec);
    Camera camera;
    kelvosim::failCall("vx_InitCamera", 2, 9, LibraryText);
    QCOMPARE(failureOf(camera), QString("Could not initialize camera."));
    QVERIFY(!camera.isOpen());
    QVERIFY(testcamera::nothingHeld());
}

void TestCameraFailures::closeCallsAfterALateFailure()
{
    Camera camera;
    QSignalSpy closed(&camera, &Camera::cameraClosed);
    kelvosim::failCall("vx_GetPixelClockRange", 1, 3, LibraryText);
    kelvosim::clearLog();
    QCOMPARE(failureOf(camera), QString(LibraryText));
    const QStringList calls = testcamera::calls();
    QCOMPARE(calls.mid(calls.indexOf("vx_GetPixelClockRange") + 1),
             (QStringList{"vx_StopLiveVideo", "vx_Event 5", "vx_ClearSequence", "vx_FreeImageMem",
                          "vx_FreeImageMem", "vx_FreeImageMem", "vx_ExitCamera"}));
    QCOMPARE(closed.count(), 1);
}

QTEST_GUILESS_MAIN(TestCameraFailures)
#include "tst_camerafailures.moc"
