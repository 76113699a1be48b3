// SPDX-License-Identifier: MIT
// One camera: opening and closing call by call, the way of a frame, events.

#include "camera.h"
#include "testcamera.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <stdexcept>

using kelvosim::SensorKind;

namespace {

QStringList repeated(int times, const QStringList &calls)
{
    QStringList all;
    for (int i = 0; i < times; ++i)
        all += calls;
    return all;
}

QStringList callsOfClosing()
{
    return QStringList{"vx_StopLiveVideo", "vx_Event 5", "vx_ClearSequence"} +
           repeated(3, {"vx_FreeImageMem"}) + QStringList{"vx_ExitCamera"};
}

/// Waits, without turning the event loop, for this number of waits of the open camera's event thread: one
/// more than events that it has taken up.
bool hasWaited(const Camera &camera, int times)
{
    const auto isOfCamera = [&](const kelvosim::Call &call) { return call.handle == camera.handle(); };
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(5000)) {
        const std::vector<kelvosim::Call> waits = testcamera::callsNamed("vx_Event 7");
        if (std::count_if(waits.begin(), waits.end(), isOfCamera) >= times)
            return true;
        QThread::yieldCurrentThread();
    }
    return false;
}

} // namespace

class TestCamera : public QObject
{
    Q_OBJECT

private slots:
    void init() { testcamera::resetTo(testcamera::small()); }

    void constructionListensForDevices();
    void constructionNeedsTwoWakeCodes_data();
    void constructionNeedsTwoWakeCodes();
    void openCallsTheLibraryInOrder();
    void openRegistersTheCamerasEvents();
    void openedIsAnnouncedBeforeTheSettingsAreRead();
    void theDeviceNumberGoesWithItsFlag();
    void closeCallsTheLibraryInOrder();
    void closeEmitsANullImageAndThenClosed();
    void closeOnAClosedCameraDoesNothing();
    void openWhileOpenClosesTheFirst();
    void aFailingReceiverOfCloseDoesNotStopTheOthers();
    void destructionReleasesAnOpenDevice();
    void theCountersStartAtZero();
    void aFirmwareUploadIsAnnounced_data();
    void aFirmwareUploadIsAnnounced();

    void aFrameIsLockedEmittedAndUnlocked();
    void theImageWrapsTheBufferWithoutACopy();
    void imageFormatsFollowTheSensor_data();
    void imageFormatsFollowTheSensor();
    void aFrameEventWhileClosedChangesNothing();
    void aFailedFrameEventWhileClosedStillCounts();
    void aLockFailureDropsTheFrameSilently();
    void aMissingLastBufferIsReported();
    void aNestedFrameIsCountedButNotEmitted();
    void aNestedFrameLeavesTheOuterImageInPlace();
    void aReceiverMayCloseTheCamera();
    void aReceiverMayReopenTheCamera();
    void freezeHandlesASingleFrame();

    void eventsBecomeSignals();
    void eventsOfTheOpenCameraNeedOne();
    void unknownEventsAreIgnored();
    void eventsOfAClosedDeviceDoNotReachTheNextOne();
    void aFailedFrameOfAClosedDeviceStillCounts();

    void serialNumberIsEmptyWhileClosed();
    void supportsCameraCorrectionFollowsTheCamera();
    void framesPerSecondIsZeroWhileClosed();
    void aThousandRoundsLeaveNothingBehind();
};

void TestCamera::constructionListensForDevices()
{
    Camera camera;
    QCOMPARE(testcamera::calls(), (QStringList{"vx_Event 1", "vx_Event 1", "vx_Event 1", "vx_Event 3"}));
    std::vector<std::uint32_t> codes;
    for (const kelvosim::Call &call : kelvosim::log()) {
        std::uint32_t code = 0;
        memcpy(&code, call.data.data(), sizeof code);
        QCOMPARE(call.handle, 0u);
        if (call.command == 1)
            codes.push_back(code);
    }
    QCOMPARE(codes.at(0), 129u);
    QCOMPARE(codes.at(1), 130u);
}

void TestCamera::constructionNeedsTwoWakeCodes_data()
{
    QTest::addColumn<int>("left");
    QTest::newRow("none") << 0;
    QTest::newRow("one") << 1;
}

void TestCamera::constructionNeedsTwoWakeCodes()
{
    QFETCH(int, left);
    std::vector<std::unique_ptr<EventThread>> threads;
    for (int i = 0; i < 200 - left; ++i)
        threads.push_back(std::make_unique<EventThread>());
    try {
        Camera camera;
        QFAIL("a camera has two event threads");
    } catch (const std::runtime_error &failure) {
        QCOMPARE(failure.what(), "Too many events :D");
    }
    for (int i = 0; i < left; ++i) // what the camera took is there again
        threads.push_back(std::make_unique<EventThread>());
    QVERIFY_EXCEPTION_THROWN(EventThread(), std::runtime_error);
    while (!threads.empty()) // last in, first out: the pool is as it was
        threads.pop_back();
    Camera camera;
}

void TestCamera::openCallsTheLibraryInOrder()
{
    Camera camera;
    kelvosim::clearLog();
    camera.open(testcamera::Device);
    QStringList calls = testcamera::calls();
    QVERIFY(calls.size() > 30);
    calls.replaceInStrings(QRegularExpression("^(vx_Set(PixelClock|ExposureTime)) (?!3276[89]).*"),
                           "\\1 value");
    const QStringList expected = QStringList{"vx_InitCamera",
                                             "vx_GetSensorInfo",
                                             "vx_SetColorMode 11",
                                             "vx_SetColorMode 32768",
                                             "vx_HotPixel 0",
                                             "vx_AOI 16",
                                             "vx_AOI 1"} +
                                 repeated(3, {"vx_AllocImageMem", "vx_AddToSequence"}) +
                                 repeated(5, {"vx_Event 1"}) +
                                 QStringList{"vx_Event 3",
                                             "vx_CaptureVideo",
                                             "vx_SetPixelClock 32769",
                                             "vx_GetFramesPerSecond",
                                             "vx_SetExposureTime 32769",
                                             "vx_GetPixelClockRange",
                                             "vx_SetPixelClock value",
                                             "vx_SetPixelClock 32768",
                                             "vx_GetFrameTimeRange",
                                             "vx_SetFrameRate",
                                             "vx_GetExposureRange",
                                             "vx_SetExposureTime 32768",
                                             "vx_SetExposureTime value",
                                             "vx_SetHardwareGain 32768"};
    QCOMPARE(calls, expected);
    QCOMPARE(testcamera::firstNumbers(testcamera::callsNamed("vx_CaptureVideo")), std::vector<double>{0});
}

void TestCamera::openRegistersTheCamerasEvents()
{
    Camera camera;
    kelvosim::clearLog();
    camera.open(testcamera::Device);
    std::vector<std::uint32_t> registered;
    for (const kelvosim::Call &call : testcamera::callsNamed("vx_Event 1")) {
        QCOMPARE(call.handle, camera.handle());
        registered.push_back(testcamera::eventCodes(call).front());
    }
    const std::vector<std::uint32_t> expected{2, 9, 128, 8, 10198}; // the last one wakes the second thread
    QCOMPARE(registered, expected);
    QCOMPARE(testcamera::eventCodes(testcamera::callsNamed("vx_Event 3").front()), expected);
}

void TestCamera::openedIsAnnouncedBeforeTheSettingsAreRead()
{
    Camera camera;
    QStringList before;
    connect(&camera, &Camera::cameraOpened, [&](Camera *opened) {
        QCOMPARE(opened, &camera);
        QVERIFY(opened->isOpen());
        before = testcamera::calls();
    });
    camera.open(testcamera::Device);
    QCOMPARE(before.last(), QString("vx_CaptureVideo"));
}

void TestCamera::theDeviceNumberGoesWithItsFlag()
{
    Camera camera;
    kelvosim::clearLog();
    camera.open(testcamera::Device);
    QCOMPARE(kelvosim::log().front().handle, std::uint32_t(testcamera::Device) | 0x8000u);
}

void TestCamera::closeCallsTheLibraryInOrder()
{
    Camera camera;
    camera.open(testcamera::Device);
    kelvosim::clearLog();
    camera.close();
    QCOMPARE(testcamera::calls(), callsOfClosing());
    QCOMPARE(testcamera::firstNumbers(testcamera::callsNamed("vx_StopLiveVideo")), std::vector<double>{1});
    QVERIFY(testcamera::nothingHeld());
}

void TestCamera::closeEmitsANullImageAndThenClosed()
{
    Camera camera;
    camera.open(testcamera::Device);
    QStringList order;
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        order << (image.isNull() ? "null image" : "image");
        QVERIFY(!camera.isOpen());
    });
    connect(&camera, &Camera::cameraClosed, [&] { order << "closed"; });
    camera.close();
    QCOMPARE(order, (QStringList{"null image", "closed"}));
}

void TestCamera::closeOnAClosedCameraDoesNothing()
{
    Camera camera;
    QSignalSpy closed(&camera, &Camera::cameraClosed);
    QSignalSpy errors(&camera, &Camera::displayError);
    int images = 0;
    connect(&camera, &Camera::newImage, [&] { ++images; });
    kelvosim::clearLog();
    camera.close();
    QVERIFY(testcamera::calls().isEmpty());
    QCOMPARE(closed.count(), 0);
    QCOMPARE(errors.count(), 0);
    QCOMPARE(images, 0);
}

void TestCamera::openWhileOpenClosesTheFirst()
{
    kelvosim::CameraSpec other = testcamera::small();
    other.serial = "KVTEST00002";
    other.deviceId = testcamera::Device + 1;
    kelvosim::addCamera(other);
    Camera camera;
    camera.open(testcamera::Device);
    QStringList order;
    connect(&camera, &Camera::newImage,
            [&](QImage &image) { order << (image.isNull() ? "null image" : "image"); });
    connect(&camera, &Camera::cameraClosed,
            [&] { order << "closed" << QString::number(kelvosim::callCount("vx_InitCamera")); });
    connect(&camera, &Camera::cameraOpened, [&] { order << "opened"; });
    kelvosim::clearLog();
    camera.open(testcamera::Device + 1);
    QCOMPARE(order, (QStringList{"null image", "closed", "0", "opened"}));
    const QStringList calls = testcamera::calls();
    QCOMPARE(calls.mid(0, 8), callsOfClosing() + QStringList{"vx_InitCamera"});
    QCOMPARE(camera.serialNumber(), QString("KVTEST00002"));
    QCOMPARE(kelvosim::openHandles(), 1);
}

void TestCamera::aFailingReceiverOfCloseDoesNotStopTheOthers()
{
    Camera camera;
    camera.open(testcamera::Device);
    QSignalSpy closed(&camera, &Camera::cameraClosed);
    QSignalSpy errors(&camera, &Camera::displayError);
    connect(&camera, &Camera::newImage, [](QImage &) { throw std::length_error("too long"); });
    camera.close();
    QCOMPARE(closed.count(), 1);
    QCOMPARE(errors.count(), 1);
    QCOMPARE(errors.first().first().toString(), QString("too long"));
}

void TestCamera::destructionReleasesAnOpenDevice()
{
    {
        Camera camera;
        camera.open(testcamera::Device);
        kelvosim::clearLog();
    }
    QCOMPARE(testcamera::calls(), repeated(2, {"vx_Event 5"}) + QStringList{"vx_ClearSequence"} +
                                      repeated(3, {"vx_FreeImageMem"}) + QStringList{"vx_ExitCamera"});
    QVERIFY(testcamera::nothingHeld());
    QCOMPARE(kelvosim::enabledEvents(), 0);
    QCOMPARE(kelvosim::waitingThreads(), 0);
}

void TestCamera::theCountersStartAtZero()
{
    Camera camera;
    camera.eventReceived(8);
    QCOMPARE(camera.failedCount(), 1);
    camera.open(testcamera::Device);
    QCOMPARE(camera.failedCount(), 0);
    QCOMPARE(camera.frameCount(), 0);
    camera.eventReceived(8);
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(camera.frameCount(), 1);
    camera.close();
    QCOMPARE(camera.failedCount(), 1);
    QCOMPARE(camera.frameCount(), 1);
    camera.open(testcamera::Device);
    QCOMPARE(camera.failedCount(), 0);
    QCOMPARE(camera.frameCount(), 0);
}

void TestCamera::aFirmwareUploadIsAnnounced_data()
{
    QTest::addColumn<int>("upload");
    QTest::addColumn<bool>("durationKnown");
    QTest::addColumn<QString>("text");
    QTest::newRow("duration unknown")
        << 20 << false << "Upload of new firmware required. (approx. 25 seconds)";
    QTest::newRow("short") << 20 << true << "Upload of new firmware required. (approx. 0 seconds)";
    QTest::newRow("truncated") << 1999 << true << "Upload of new firmware required. (approx. 1 seconds)";
}

void TestCamera::aFirmwareUploadIsAnnounced()
{
    QFETCH(int, upload);
    QFETCH(bool, durationKnown);
    QFETCH(QString, text);
    kelvosim::CameraSpec spec = testcamera::small();
    spec.firmwareUpload = upload;
    testcamera::resetTo(spec);
    if (!durationKnown)
        kelvosim::failCall("vx_GetDuration", 1, 1, "not known");
    Camera camera;
    QSignalSpy errors(&camera, &Camera::displayError);
    kelvosim::clearLog();
    camera.open(testcamera::Device);
    QVERIFY(camera.isOpen());
    QCOMPARE(errors.count(), 1);
    QCOMPARE(errors.first().at(0).toString(), text);
    QCOMPARE(errors.first().at(1).toInt(), 2000);
    QCOMPARE(testcamera::calls().mid(0, 3),
             (QStringList{"vx_InitCamera", "vx_GetDuration", "vx_InitCamera"}));
    std::vector<std::uint32_t> numbers;
    for (const kelvosim::Call &call : testcamera::callsNamed("vx_InitCamera"))
        numbers.push_back(call.handle);
    const kelvosim::Call duration = testcamera::callsNamed("vx_GetDuration").front();
    QCOMPARE(duration.handle, std::uint32_t(testcamera::Device) | 0x8000u);
    QCOMPARE(duration.numbers, std::vector<double>{1});
    QCOMPARE(numbers,
             (std::vector<std::uint32_t>{testcamera::Device | 0x8000, testcamera::Device | 0x18000}));
}

void TestCamera::aFrameIsLockedEmittedAndUnlocked()
{
    Camera camera;
    camera.open(testcamera::Device);
    QStringList before;
    int lockedDuring = 0;
    connect(&camera, &Camera::newImage, [&](QImage &) {
        before = testcamera::calls();
        lockedDuring = kelvosim::lockedBuffers();
    });
    kelvosim::clearLog();
    QVERIFY(kelvosim::pushFrame(testcamera::Serial, testcamera::flatFrame(testcamera::small(), 10)));
    QTRY_COMPARE(before, (QStringList{"vx_GetActSeqBuf", "vx_LockSeqBuf"}));
    QTRY_COMPARE(testcamera::calls(), before + QStringList{"vx_UnlockSeqBuf"});
    QCOMPARE(lockedDuring, 1);
    QCOMPARE(kelvosim::lockedBuffers(), 0);
    QCOMPARE(camera.frameCount(), 1);
}

void TestCamera::theImageWrapsTheBufferWithoutACopy()
{
    Camera camera;
    camera.open(testcamera::Device);
    const uchar *seen = nullptr;
    connect(&camera, &Camera::newImage, [&](QImage &image) { seen = image.constBits(); });
    kelvosim::pushFrame(testcamera::Serial, testcamera::flatFrame(testcamera::small(), 10));
    QTRY_VERIFY(seen);
    char *last = nullptr;
    QCOMPARE(vx_GetActSeqBuf(camera.handle(), nullptr, nullptr, &last), 0);
    QVERIFY(static_cast<const void *>(seen) == last);
}

void TestCamera::imageFormatsFollowTheSensor_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("format");
    QTest::newRow("mono") << int(SensorKind::Mono) << 6 << int(QImage::Format_Indexed8);
    QTest::newRow("raw Bayer") << int(SensorKind::RawBayer) << 11 << int(QImage::Format_Indexed8);
    QTest::newRow("colour") << int(SensorKind::Colour32) << 0 << int(QImage::Format_RGB32);
}

void TestCamera::imageFormatsFollowTheSensor()
{
    QFETCH(int, kind);
    QFETCH(int, mode);
    QFETCH(int, format);
    kelvosim::CameraSpec spec = testcamera::small();
    spec.kind = static_cast<SensorKind>(kind);
    spec.width = 63; // rows are padded to 32 bits
    testcamera::resetTo(spec);
    Camera camera;
    camera.open(testcamera::Device);
    QCOMPARE(camera.colorMode(), mode);
    QImage copy;
    int colours = -1;
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        copy = image.copy();
        colours = image.colorCount();
    });
    std::vector<std::uint8_t> frame = testcamera::flatFrame(spec, 0);
    frame[frame.size() - 1] = 200;
    kelvosim::pushFrame(testcamera::Serial, frame);
    QTRY_VERIFY(!copy.isNull());
    QCOMPARE(int(copy.format()), format);
    QCOMPARE(copy.size(), QSize(63, 48));
    QCOMPARE(colours, 0);
    const int bytesPerPixel = copy.depth() / 8;
    QCOMPARE(int(copy.constScanLine(47)[63 * bytesPerPixel - 1]), 200);
}

void TestCamera::aFrameEventWhileClosedChangesNothing()
{
    Camera camera;
    kelvosim::clearLog();
    camera.eventReceived(2);
    QCOMPARE(camera.frameCount(), 0);
    QVERIFY(testcamera::calls().isEmpty());
}

void TestCamera::aFailedFrameEventWhileClosedStillCounts()
{
    Camera camera;
    camera.eventReceived(8);
    QCOMPARE(camera.failedCount(), 1);
}

void TestCamera::aLockFailureDropsTheFrameSilently()
{
    Camera camera;
    camera.open(testcamera::Device);
    QSignalSpy errors(&camera, &Camera::displayError);
    QSignalSpy images(&camera, &Camera::newImage);
    kelvosim::failCall("vx_LockSeqBuf", 1, 8, "locked");
    kelvosim::clearLog();
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(camera.frameCount(), 1);
    QCOMPARE(testcamera::calls(), (QStringList{"vx_GetActSeqBuf", "vx_LockSeqBuf"}));
    QCOMPARE(errors.count(), 0);
    QCOMPARE(images.count(), 0);
}

void TestCamera::aMissingLastBufferIsReported()
{
    Camera camera;
    camera.open(testcamera::Device);
    QSignalSpy errors(&camera, &Camera::displayError);
    kelvosim::failCall("vx_GetActSeqBuf", 1, 8, "no buffer yet");
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(errors.count(), 1);
    QCOMPARE(errors.first().at(0).toString(), QString("no buffer yet"));
    QCOMPARE(errors.first().at(1).toInt(), 2000);
    QCOMPARE(camera.frameCount(), 1);
}

void TestCamera::aNestedFrameIsCountedButNotEmitted()
{
    Camera camera;
    camera.open(testcamera::Device);
    int images = 0;
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        if (image.isNull())
            return;
        ++images;
        kelvosim::pushFrame(testcamera::Serial, {});
        QTRY_COMPARE(camera.frameCount(), 2); // a receiver that runs the event loop, as a message box does
    });
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(images, 1);
    QCOMPARE(camera.frameCount(), 2);
    QTRY_COMPARE(kelvosim::lockedBuffers(), 0);
}

void TestCamera::aNestedFrameLeavesTheOuterImageInPlace()
{
    Camera camera;
    camera.open(testcamera::Device);
    const uchar *first = nullptr;
    const uchar *second = nullptr;
    int grey = -1;
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        if (image.isNull())
            return;
        first = image.constBits();
        kelvosim::pushFrame(testcamera::Serial, testcamera::flatFrame(testcamera::small(), 20));
        QTRY_COMPARE(camera.frameCount(), 2);
    });
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        if (image.isNull())
            return;
        second = image.constBits();
        grey = second[0];
    });
    kelvosim::pushFrame(testcamera::Serial, testcamera::flatFrame(testcamera::small(), 10));
    QTRY_VERIFY(second);
    QCOMPARE(camera.frameCount(), 2);
    QCOMPARE(grey, 10);
    QVERIFY(second == first);
}

void TestCamera::aReceiverMayCloseTheCamera()
{
    Camera camera;
    camera.open(testcamera::Device);
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        if (!image.isNull())
            camera.close();
    });
    kelvosim::clearLog();
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_VERIFY(!camera.isOpen());
    // The buffer is gone, and so is its lock.
    QCOMPARE(testcamera::calls(), (QStringList{"vx_GetActSeqBuf", "vx_LockSeqBuf"}) + callsOfClosing());
    QVERIFY(testcamera::nothingHeld());
}

void TestCamera::aReceiverMayReopenTheCamera()
{
    Camera camera;
    camera.open(testcamera::Device);
    int images = 0;
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        if (image.isNull() || ++images > 1)
            return;
        camera.close();
        camera.open(testcamera::Device);
    });
    kelvosim::clearLog();
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(images, 1);
    QVERIFY(camera.isOpen());
    QVERIFY(testcamera::callsNamed("vx_UnlockSeqBuf").empty()); // that buffer is not the new device's
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(images, 2);
    QCOMPARE(testcamera::callsNamed("vx_UnlockSeqBuf").size(), std::size_t(1));
    QCOMPARE(kelvosim::lockedBuffers(), 0);
}

void TestCamera::freezeHandlesASingleFrame()
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.freeRunning = true;
    testcamera::resetTo(spec);
    Camera camera;
    camera.freeze();
    camera.open(testcamera::Device);
    vx_StopLiveVideo(camera.handle(), 1);
    const int before = camera.frameCount();
    kelvosim::clearLog();
    camera.freeze();
    QCOMPARE(camera.frameCount(), before + 1);
    QCOMPARE(testcamera::calls(),
             (QStringList{"vx_FreezeVideo", "vx_GetActSeqBuf", "vx_LockSeqBuf", "vx_UnlockSeqBuf"}));
    kelvosim::failCall("vx_FreezeVideo", 1, 4, "no single image");
    QVERIFY_EXCEPTION_THROWN(camera.freeze(), std::runtime_error);
}

void TestCamera::eventsBecomeSignals()
{
    Camera camera;
    camera.open(testcamera::Device);
    QSignalSpy removed(&camera, &Camera::cameraRemoved);
    QSignalSpy reconnect(&camera, &Camera::cameraReconnect);
    QSignalSpy removedDevice(&camera, &Camera::cameraRemovedDevice);
    QSignalSpy newDevice(&camera, &Camera::cameraNewDevice);
    kelvosim::unplug(testcamera::Serial);
    QTRY_COMPARE(removed.count(), 1);
    QTRY_COMPARE(removedDevice.count(), 1);
    QVERIFY(camera.isOpen());
    kelvosim::plug(testcamera::Serial);
    QTRY_COMPARE(reconnect.count(), 1);
    QTRY_COMPARE(newDevice.count(), 1);
    kelvosim::failFrames(testcamera::Serial, 1);
    QTRY_COMPARE(camera.failedCount(), 1);
}

void TestCamera::eventsOfTheOpenCameraNeedOne()
{
    Camera camera;
    QSignalSpy removed(&camera, &Camera::cameraRemoved);
    QSignalSpy reconnect(&camera, &Camera::cameraReconnect);
    QSignalSpy removedDevice(&camera, &Camera::cameraRemovedDevice);
    for (const int event : {9, 128, 129})
        camera.eventReceived(event);
    QCOMPARE(removed.count(), 0);
    QCOMPARE(reconnect.count(), 0);
    QCOMPARE(removedDevice.count(), 1);
}

void TestCamera::unknownEventsAreIgnored()
{
    Camera camera;
    camera.open(testcamera::Device);
    QSignalSpy errors(&camera, &Camera::displayError);
    kelvosim::clearLog();
    for (const int event : {-1, 0, 1, 3, 10199, 100000})
        camera.eventReceived(event);
    QVERIFY(testcamera::calls().isEmpty());
    QCOMPARE(errors.count(), 0);
}

void TestCamera::eventsOfAClosedDeviceDoNotReachTheNextOne()
{
    Camera camera;
    camera.open(testcamera::Device);
    QSignalSpy removed(&camera, &Camera::cameraRemoved);
    // Not one turn of the event loop from here: what the first opening is told stays in the queue.
    QVERIFY(hasWaited(camera, 1));
    for (int frame = 1; frame <= 3; ++frame) { // the second one is held back, the third one counts with it
        kelvosim::pushFrame(testcamera::Serial, {});
        QVERIFY(hasWaited(camera, 1 + frame));
    }
    kelvosim::signalEvent(testcamera::Serial, 128);
    QVERIFY(hasWaited(camera, 5));
    camera.close();
    camera.open(testcamera::Device);
    testcamera::turnEventLoop();
    QCOMPARE(camera.frameCount(), 0);
    QCOMPARE(removed.count(), 0);
    for (int frame = 1; frame <= 2; ++frame) {
        kelvosim::pushFrame(testcamera::Serial, {});
        QTRY_COMPARE(camera.frameCount(), frame);
    }
}

void TestCamera::aFailedFrameOfAClosedDeviceStillCounts()
{
    Camera camera;
    camera.open(testcamera::Device);
    QVERIFY(hasWaited(camera, 1));
    kelvosim::signalEvent(testcamera::Serial, 8);
    QVERIFY(hasWaited(camera, 2));
    camera.close();
    camera.open(testcamera::Device);
    QCOMPARE(camera.failedCount(), 0); // it is still in the queue
    testcamera::turnEventLoop();
    QCOMPARE(camera.failedCount(), 1);
}

void TestCamera::serialNumberIsEmptyWhileClosed()
{
    Camera camera;
    QCOMPARE(camera.serialNumber(), QString());
    camera.open(testcamera::Device);
    QCOMPARE(camera.serialNumber(), QString::fromStdString(testcamera::Serial));
    kelvosim::failCall("vx_GetCameraInfo", 1, 3, "no information");
    QCOMPARE(camera.serialNumber(), QString());
}

void TestCamera::supportsCameraCorrectionFollowsTheCamera()
{
    Camera camera;
    QVERIFY(!camera.supportsCameraCorrection());
    camera.open(testcamera::Device);
    QVERIFY(camera.supportsCameraCorrection());
    kelvosim::failCall("vx_HotPixel", 1, 3, "no modes", 32769);
    QVERIFY(!camera.supportsCameraCorrection());

    kelvosim::CameraSpec spec = testcamera::small();
    spec.serial = "KVTEST00002";
    spec.deviceId = testcamera::Device + 1;
    spec.storesLists = false;
    kelvosim::addCamera(spec);
    camera.open(testcamera::Device + 1);
    QVERIFY(!camera.supportsCameraCorrection());
}

void TestCamera::framesPerSecondIsZeroWhileClosed()
{
    Camera camera;
    kelvosim::clearLog();
    QCOMPARE(camera.framesPerSecond(), 0.0);
    QVERIFY(testcamera::calls().isEmpty());
    camera.open(testcamera::Device);
    kelvosim::failCall("vx_GetFramesPerSecond", 1, 3, "not measured");
    QCOMPARE(camera.framesPerSecond(), 0.0);
}

void TestCamera::aThousandRoundsLeaveNothingBehind()
{
    Camera camera;
    kelvosim::setLogging(false);
    for (int round = 0; round < 1000; ++round) {
        camera.open(testcamera::Device);
        kelvosim::pushFrame(testcamera::Serial, {});
        QCoreApplication::processEvents();
        camera.close();
        QVERIFY(testcamera::nothingHeld());
    }
    QCOMPARE(kelvosim::enabledEvents(), 3); // the device events and their wake-up code
    kelvosim::setLogging(true);
}

QTEST_GUILESS_MAIN(TestCamera)
#include "tst_camera.moc"
