// SPDX-License-Identifier: MIT
// Calls that answer nonsense because a test asked for it.

#include "kelvo_api.h"
#include "kelvosim.h"
#include "testcamera.h"

#include <QtTest>

#include <cmath>
#include <limits>

class TestLies : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { kelvosim::reset(); }

    void aResultHidesWhatTheCallCameTo();
    void numbersAreWrittenByTheirPlace();
    void whatAnIntegerCannotHoldIsCut();
    void aLieIsMeantForOneCommandWhereOneIsNamed();
    void pointersAndRecordsAreOverwritten();
    void aRecordIsOverwrittenNoFurtherThanItReaches();
    void theLastLieCountsUntilTheTruthIsTold();
    void anEventIsReportedThatNobodySignalled();

private:
    std::uint32_t handle = 0;
};

void TestLies::init()
{
    testcamera::resetTo(testcamera::small());
    handle = 0x8000 | testcamera::Device;
    QCOMPARE(vx_InitCamera(&handle, nullptr), 0);
}

void TestLies::aResultHidesWhatTheCallCameTo()
{
    kelvosim::overrideResult("vx_CaptureVideo", 0);
    QCOMPARE(vx_CaptureVideo(handle + 1, 0), 0);
    kelvosim::overrideResult("vx_CaptureVideo", -7);
    QCOMPARE(vx_CaptureVideo(handle, 0), -7);
    QVERIFY(testcamera::callsNamed("vx_CaptureVideo").back().result == -7);
}

void TestLies::numbersAreWrittenByTheirPlace()
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    kelvosim::overrideNumber("vx_GetFrameTimeRange", 2, notANumber);
    double min = 0.0;
    double max = 0.0;
    double increment = 0.0;
    QCOMPARE(vx_GetFrameTimeRange(handle, &min, &max, &increment), 0);
    QVERIFY(min > 0.0 && max > min && std::isnan(increment));

    kelvosim::overrideNumber("vx_AOI", 1, -3, 16);
    std::int32_t size[2] = {};
    QCOMPARE(vx_AOI(handle, 16, size, sizeof size), 0);
    QCOMPARE(size[0], 64);
    QCOMPARE(size[1], -3);
}

void TestLies::whatAnIntegerCannotHoldIsCut()
{
    kelvosim::overrideNumber("vx_GetNumberOfCameras", 0, 1e300);
    std::int32_t count = 0;
    vx_GetNumberOfCameras(&count);
    QCOMPARE(count, std::numeric_limits<std::int32_t>::max());
    kelvosim::overrideNumber("vx_GetNumberOfCameras", 0, std::nan(""));
    vx_GetNumberOfCameras(&count);
    QCOMPARE(count, 0);
}

void TestLies::aLieIsMeantForOneCommandWhereOneIsNamed()
{
    kelvosim::overrideNumber("vx_HotPixel", 0, 4294967295.0, 33031);
    std::uint32_t factory = 0;
    std::uint32_t user = 0;
    vx_HotPixel(handle, 33031, &factory, sizeof factory);
    vx_HotPixel(handle, 33034, &user, sizeof user);
    QCOMPARE(factory, 0xFFFFFFFF);
    QCOMPARE(user, 0u);
}

void TestLies::pointersAndRecordsAreOverwritten()
{
    char foreign[4] = {};
    kelvosim::overridePointer("vx_AllocImageMem", foreign);
    char *memory = nullptr;
    std::int32_t id = 0;
    QCOMPARE(vx_AllocImageMem(handle, 64, 48, 8, &memory, &id), 0);
    QCOMPARE(memory, &foreign[0]);
    QVERIFY(id > 0);

    kelvosim::overrideData("vx_GetCameraInfo", {'o', 't', 'h', 'e', 'r', 0});
    char record[64] = {};
    QCOMPARE(vx_GetCameraInfo(handle, record), 0);
    QCOMPARE(QString(record), QString("other"));
}

void TestLies::aRecordIsOverwrittenNoFurtherThanItReaches()
{
    kelvosim::overrideResult("vx_HotPixel", 0, 33032);
    kelvosim::overrideData("vx_HotPixel", {9, 9, 9, 9, 9, 9}, 33032);
    std::uint8_t list[4] = {};
    QCOMPARE(vx_HotPixel(handle, 33032, list, 2), 0);
    QCOMPARE(list[1], std::uint8_t(9));
    QCOMPARE(list[2], std::uint8_t(0));
}

void TestLies::theLastLieCountsUntilTheTruthIsTold()
{
    kelvosim::overrideResult("vx_SetPixelClock", 1);
    kelvosim::overrideResult("vx_SetPixelClock", 2, 32768);
    QCOMPARE(vx_SetPixelClock(handle, 32768), 2);
    QCOMPARE(vx_SetPixelClock(handle, 32769), 1);
    kelvosim::tellTheTruth();
    QCOMPARE(vx_SetPixelClock(handle, 32768), 40);
    kelvosim::overrideResult("vx_SetPixelClock", 3);
    kelvosim::reset();
    QVERIFY(vx_SetPixelClock(handle, 32768) != 3);
}

void TestLies::anEventIsReportedThatNobodySignalled()
{
    // A wait that fails at once, and then claims to have ended with an event.
    kelvosim::failCall("vx_Event", kelvosim::EveryCall, 5, "no wait", 7);
    kelvosim::overrideResult("vx_Event", 0, 7);
    kelvosim::overrideNumber("vx_Event", 0, 128, 7);
    struct
    {
        std::uint32_t *codes;
        std::uint32_t count, waitForAll, timeout, signalled, further;
    } record = {nullptr, 0, 0, 0, 0, 0};
    QCOMPARE(vx_Event(handle, 7, &record, sizeof record), 0);
    QCOMPARE(record.signalled, 128u);
}

QTEST_GUILESS_MAIN(TestLies)
#include "tst_lies.moc"
