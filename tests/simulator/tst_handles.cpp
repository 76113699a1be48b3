// SPDX-License-Identifier: MIT
// Listing, opening and closing cameras, and what vx_GetError tells.

#include "programside.h"

#include <thread>

using namespace programside;

namespace {

std::uint32_t wordAt(const std::vector<std::uint8_t> &bytes, std::size_t at)
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + at, sizeof word);
    return word;
}

std::string textAt(const std::vector<std::uint8_t> &bytes, std::size_t at, std::size_t length)
{
    const std::string text(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                           bytes.begin() + static_cast<std::ptrdiff_t>(at + length));
    return text.substr(0, text.find('\0'));
}

/// The camera list through a buffer for `capacity` cameras, with guard bytes behind it.
std::vector<std::uint8_t> cameraList(std::uint32_t capacity)
{
    std::vector<std::uint8_t> bytes(4 + 112 * capacity + 16, 0xEE);
    std::memcpy(bytes.data(), &capacity, sizeof capacity);
    require(vx_GetCameraList(bytes.data()), "vx_GetCameraList");
    return bytes;
}

kelvosim::CameraSpec another(const std::string &serial)
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.serial = serial;
    spec.deviceId = 0;
    return spec;
}

} // namespace

class TestHandles : public QObject
{
    Q_OBJECT

private slots:
    void init() { kelvosim::reset(); }

    void theListHasARecordForEachAttachedCamera();
    void theListNeverExceedsItsBuffer();
    void theListTellsWhoIsInUse();
    void theListMayLie();
    void theListFollowsTheGivenOrder();
    void aCameraOpensOnce();
    void anUnattachedOrUnknownCameraCannotBeOpened();
    void aCameraUsedElsewhereCannotBeOpened();
    void aCameraAlsoOpensByItsId();
    void firmwareUploadIsAskedForAndThenDone();
    void anUnpluggedUploadFails();
    void aClosedHandleIsInvalid();
    void recordsHoldSensorAndSerialNumber();
    void theKindDecidesTheColourMode_data();
    void theKindDecidesTheColourMode();
    void errorsAreKeptForEachHandle();
    void anErrorTextStaysReadable();
    void nullPointersAreRefused();
    void aRemovedCameraIsGone();
    void impossibleCamerasAreRefused();
};

void TestHandles::theListHasARecordForEachAttachedCamera()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::CameraSpec second = another("KV00000002");
    second.model = "KV-2";
    second.cameraId = 90;
    second.extraWord = 77;
    kelvosim::addCamera(second);
    kelvosim::CameraSpec third = another("KV00000003");
    third.attached = false;
    kelvosim::addCamera(third);
    std::int32_t count = 0;
    QCOMPARE(vx_GetNumberOfCameras(&count), 0);
    QCOMPARE(count, 2);
    const std::vector<std::uint8_t> list = cameraList(2);
    QCOMPARE(wordAt(list, 0), 2u);
    QCOMPARE(wordAt(list, 4), 1u);
    QCOMPARE(wordAt(list, 8), DeviceId);
    QCOMPARE(textAt(list, 20, 16), std::string(Serial));
    QCOMPARE(wordAt(list, 116), 90u);
    QCOMPARE(wordAt(list, 120), 1u);
    QCOMPARE(wordAt(list, 124), 77u);
    QCOMPARE(textAt(list, 132, 16), std::string("KV00000002"));
    QCOMPARE(textAt(list, 148, 80), std::string("KV-2"));
}

void TestHandles::theListNeverExceedsItsBuffer()
{
    for (const char *const serial : {"A", "B", "C"})
        kelvosim::addCamera(another(serial));
    std::vector<std::uint8_t> list = cameraList(2);
    QCOMPARE(wordAt(list, 0), 2u);
    QCOMPARE(list[4 + 224], std::uint8_t(0xEE));
    list = cameraList(0);
    QCOMPARE(wordAt(list, 0), 0u);
    QCOMPARE(list[4], std::uint8_t(0xEE));
    QCOMPARE(wordAt(cameraList(5), 0), 3u);
}

void TestHandles::theListTellsWhoIsInUse()
{
    kelvosim::addCamera(smallCamera());
    QCOMPARE(wordAt(cameraList(1), 16), 0u);
    {
        const OpenedCamera camera;
        QCOMPARE(wordAt(cameraList(1), 16), 1u);
    }
    QCOMPARE(wordAt(cameraList(1), 16), 0u);
    kelvosim::setUsedElsewhere(Serial, true);
    QCOMPARE(wordAt(cameraList(1), 16), 1u);
}

void TestHandles::theListMayLie()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::lieAboutCameras(4, 1000);
    std::int32_t count = 0;
    vx_GetNumberOfCameras(&count);
    QCOMPARE(count, 4);
    kelvosim::lieAboutTexts(Serial, std::string(20, 's'), std::string(90, 'm'));
    const std::vector<std::uint8_t> list = cameraList(1);
    QCOMPARE(wordAt(list, 0), 1000u);
    QCOMPARE(textAt(list, 20, 16), std::string(16, 's'));
    QCOMPARE(textAt(list, 36, 80), std::string(80, 'm'));
    QCOMPARE(list[116], std::uint8_t(0xEE));
    kelvosim::lieAboutCameras(-1, -1);
    kelvosim::lieAboutTexts(Serial, "", "");
    QCOMPARE(wordAt(cameraList(1), 0), 1u);
    QCOMPARE(textAt(cameraList(1), 20, 16), std::string(Serial));
}

void TestHandles::theListFollowsTheGivenOrder()
{
    for (const char *const serial : {"A", "B", "C"})
        kelvosim::addCamera(another(serial));
    kelvosim::setListOrder({"C", "A"});
    const std::vector<std::uint8_t> list = cameraList(3);
    QCOMPARE(textAt(list, 20, 16), std::string("C"));
    QCOMPARE(textAt(list, 132, 16), std::string("A"));
    QCOMPARE(textAt(list, 244, 16), std::string("B"));
}

void TestHandles::aCameraOpensOnce()
{
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    QCOMPARE(kelvosim::openHandles(), 1);
    std::uint32_t second = DeviceId | DeviceFlag;
    QVERIFY(vx_InitCamera(&second, nullptr) != 0);
    QCOMPARE(second, DeviceId | DeviceFlag);
    QCOMPARE(errorText(0), std::string("The camera is in use."));
}

void TestHandles::anUnattachedOrUnknownCameraCannotBeOpened()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.attached = false;
    kelvosim::addCamera(spec);
    for (const std::uint32_t device : {DeviceId, 99u}) {
        std::uint32_t handle = device | DeviceFlag;
        QVERIFY(vx_InitCamera(&handle, nullptr) != 0);
    }
    kelvosim::plug(Serial);
    const OpenedCamera camera;
    QCOMPARE(kelvosim::openHandles(), 1);
}

void TestHandles::aCameraUsedElsewhereCannotBeOpened()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::setUsedElsewhere(Serial, true);
    QVERIFY_EXCEPTION_THROWN(OpenedCamera(), std::runtime_error);
    kelvosim::setUsedElsewhere(Serial, false);
    const OpenedCamera camera;
}

void TestHandles::aCameraAlsoOpensByItsId()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.cameraId = 3;
    kelvosim::addCamera(spec);
    std::uint32_t handle = 3;
    QCOMPARE(vx_InitCamera(&handle, nullptr), 0);
    vx_ExitCamera(handle);
    handle = 0;
    QCOMPARE(vx_InitCamera(&handle, nullptr), 0);
    std::uint32_t next = 0;
    QVERIFY(vx_InitCamera(&next, nullptr) != 0);
    vx_ExitCamera(handle);
}

void TestHandles::firmwareUploadIsAskedForAndThenDone()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.firmwareUpload = 60;
    kelvosim::addCamera(spec);
    std::uint32_t handle = DeviceId | DeviceFlag;
    QCOMPARE(vx_InitCamera(&handle, nullptr), 184);
    std::int32_t milliseconds = 0;
    QCOMPARE(vx_GetDuration(DeviceId | DeviceFlag, 1, &milliseconds), 0);
    QCOMPARE(milliseconds, 60);
    QVERIFY(vx_GetDuration(DeviceId | DeviceFlag, 2, &milliseconds) != 0);
    handle = DeviceId | DeviceFlag | UploadFlag;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(vx_InitCamera(&handle, nullptr), 0);
    QVERIFY(timer.elapsed() >= 59);
    vx_ExitCamera(handle);
    const OpenedCamera again;
    QCOMPARE(vx_GetDuration(again.handle, 1, &milliseconds), 0);
    QCOMPARE(milliseconds, 0);
}

void TestHandles::anUnpluggedUploadFails()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.firmwareUpload = 60000;
    kelvosim::addCamera(spec);
    std::int32_t status = 0;
    std::thread thread([&status] {
        std::uint32_t handle = DeviceId | DeviceFlag | UploadFlag;
        status = vx_InitCamera(&handle, nullptr);
    });
    QTRY_COMPARE(wordAt(cameraList(1), 16), 1u);
    kelvosim::unplug(Serial);
    thread.join();
    QVERIFY(status != 0);
    QCOMPARE(kelvosim::openHandles(), 0);
}

void TestHandles::aClosedHandleIsInvalid()
{
    kelvosim::addCamera(smallCamera());
    std::uint32_t handle = 0;
    {
        const OpenedCamera camera;
        handle = camera.handle;
    }
    QVERIFY(vx_ExitCamera(handle) != 0);
    QVERIFY(vx_StopLiveVideo(handle, 1) != 0);
    std::uint8_t record[80];
    QVERIFY(vx_GetSensorInfo(handle, record) != 0);
    const OpenedCamera camera;
    QVERIFY(camera.handle != handle);
}

void TestHandles::recordsHoldSensorAndSerialNumber()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.serial = "KV000000077";
    spec.sensorId = 0x21D;
    kelvosim::addCamera(spec);
    const OpenedCamera camera;
    std::vector<std::uint8_t> sensor(81, 0xEE);
    QCOMPARE(vx_GetSensorInfo(camera.handle, sensor.data()), 0);
    QCOMPARE(wordAt(sensor, 0) & 0xFFFF, 0x21Du);
    QCOMPARE(sensor[80], std::uint8_t(0xEE));
    std::vector<std::uint8_t> info(65, 0xEE);
    QCOMPARE(vx_GetCameraInfo(camera.handle, info.data()), 0);
    QCOMPARE(textAt(info, 0, 12), std::string("KV000000077"));
    QCOMPARE(info[64], std::uint8_t(0xEE));
}

void TestHandles::theKindDecidesTheColourMode_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("mode");
    QTest::newRow("mono") << static_cast<int>(kelvosim::SensorKind::Mono) << 6;
    QTest::newRow("raw Bayer") << static_cast<int>(kelvosim::SensorKind::RawBayer) << 11;
    QTest::newRow("colour") << static_cast<int>(kelvosim::SensorKind::Colour32) << 0;
}

void TestHandles::theKindDecidesTheColourMode()
{
    QFETCH(int, kind);
    QFETCH(int, mode);
    kelvosim::CameraSpec spec = smallCamera();
    spec.kind = static_cast<kelvosim::SensorKind>(kind);
    kelvosim::addCamera(spec);
    const OpenedCamera camera;
    QCOMPARE(vx_SetColorMode(camera.handle, 11), 0);
    QCOMPARE(vx_SetColorMode(camera.handle, 32768), mode);
    QVERIFY(vx_SetColorMode(camera.handle, 5) != 0);
    QCOMPARE(vx_SetColorMode(camera.handle, 32768), mode);
}

void TestHandles::errorsAreKeptForEachHandle()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::CameraSpec spec = another("B");
    spec.deviceId = 8;
    kelvosim::addCamera(spec);
    const OpenedCamera first(DeviceId);
    const OpenedCamera second(8);
    QCOMPARE(errorText(first.handle), std::string("No error."));
    vx_SetPixelClock(first.handle, 9999);
    vx_AOI(second.handle, 16, nullptr, 8);
    vx_ExitCamera(12345);
    QCOMPARE(errorText(first.handle), std::string("The pixel clock is out of range."));
    QCOMPARE(errorText(second.handle), std::string("A pointer that is needed is null."));
    QCOMPARE(errorText(0), std::string("The camera handle is not valid."));
    QCOMPARE(errorText(777), std::string("The camera handle is not valid."));
}

void TestHandles::anErrorTextStaysReadable()
{
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    vx_SetPixelClock(camera.handle, 9999);
    std::int32_t code = 0;
    char *text = nullptr;
    QCOMPARE(vx_GetError(camera.handle, &code, &text), 0);
    QVERIFY(code != 0);
    vx_AOI(camera.handle, 99, nullptr, 0);
    QCOMPARE(std::string(text), std::string("The pixel clock is out of range."));
}

void TestHandles::nullPointersAreRefused()
{
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    const std::uint32_t h = camera.handle;
    double value = 0.0;
    std::int32_t number = 0;
    char *text = nullptr;
    QVERIFY(vx_GetNumberOfCameras(nullptr) != 0);
    QVERIFY(vx_GetCameraList(nullptr) != 0);
    QVERIFY(vx_InitCamera(nullptr, nullptr) != 0);
    QVERIFY(vx_GetDuration(h, 1, nullptr) != 0);
    QVERIFY(vx_GetSensorInfo(h, nullptr) != 0);
    QVERIFY(vx_GetCameraInfo(h, nullptr) != 0);
    QVERIFY(vx_GetError(h, nullptr, &text) != 0);
    QVERIFY(vx_GetError(h, &number, nullptr) != 0);
    QVERIFY(vx_LoadParameters(h, nullptr) != 0);
    QVERIFY(vx_GetFramesPerSecond(h, nullptr) != 0);
    QVERIFY(vx_GetPixelClockRange(h, nullptr, &number) != 0);
    QVERIFY(vx_GetFrameTimeRange(h, &value, nullptr, &value) != 0);
    QVERIFY(vx_SetFrameRate(h, 1.0, nullptr) != 0);
    QVERIFY(vx_GetExposureRange(h, &value, &value, nullptr) != 0);
    QVERIFY(vx_SetExposureTime(h, 1.0, nullptr) != 0);
}

void TestHandles::aRemovedCameraIsGone()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::removeCamera(Serial);
    std::int32_t count = 9;
    vx_GetNumberOfCameras(&count);
    QCOMPARE(count, 0);
    QVERIFY_EXCEPTION_THROWN(kelvosim::plug(Serial), std::invalid_argument);
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
}

void TestHandles::impossibleCamerasAreRefused()
{
    kelvosim::addCamera(smallCamera());
    QVERIFY_EXCEPTION_THROWN(kelvosim::addCamera(smallCamera()), std::invalid_argument);
    QVERIFY_EXCEPTION_THROWN(kelvosim::addCamera(another("KV0123456789")), std::invalid_argument);
    kelvosim::CameraSpec flat = another("B");
    flat.height = 0;
    QVERIFY_EXCEPTION_THROWN(kelvosim::addCamera(flat), std::invalid_argument);
}

QTEST_GUILESS_MAIN(TestHandles)
#include "tst_handles.moc"
