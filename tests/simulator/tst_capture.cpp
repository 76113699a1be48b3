// SPDX-License-Identifier: MIT
// Buffers, the sequence and capture: filled in turn, never while locked, and nothing left behind.

#include "programside.h"

#include <atomic>
#include <limits>
#include <set>
#include <thread>

using namespace programside;

namespace {

std::vector<std::uint8_t> evenFrame(std::uint8_t value)
{
    return std::vector<std::uint8_t>(64 * 48, value);
}

} // namespace

class TestCapture : public QObject
{
    Q_OBJECT

private slots:
    void init() { kelvosim::reset(); }

    void buffersAreFilledInTurn();
    void theLastCompleteBufferIsNamed();
    void noBufferIsNamedBeforeTheFirstFrame();
    void aLockedBufferIsNeverWritten();
    void aLockedBufferStaysUntouchedByALiveCamera();
    void allBuffersLockedFailsTheFrame();
    void aBufferCannotBeLockedTwice();
    void buffersCanBeNamedByTheirNumber();
    void rowsArePaddedTo32Bits();
    void pushedFramesFillRowsWithoutTheirPadding();
    void aCapturingCameraSignalsFrames();
    void aBufferMayBeFreedWhileTheCameraCaptures();
    void clearingTheSequenceLetsNoFrameThrough();
    void stoppingWaitsUntilNothingIsWritten();
    void exitFreesWhatIsLeft();
    void whatIsLeftToExitCountsUntilReset();
    void whatIsFreedBeforeExitIsForgotten();
    void freezeTakesOneFrameWithoutAnEvent();
    void freezeWithoutWaitingSignalsItsFrame();
    void freezeWithoutWaitingSignalsItsFailure();
    void anInterruptedFreezeLeavesNoFrameToCome();
    void failedFramesAreSignalledOneByOne();
    void failuresReachACameraThatIsFedByHand();
    void anImpossibleNumberOfFailuresFailsNothing();
    void theLargestNumbersOfFailuresAddUp();
    void anUnpluggedCameraPausesAndResumes();
    void captureStartsTwiceAndStopsTwice();
    void unknownBuffersAreRefused();
    void aThousandRoundsLeaveNothingBehind();
    void fiveHundredFramesASecondAreReached();
    void theMeasuredRateStartsAtTheSetOne();
    void theMeasuredRateFallsToNothingWithoutFrames_data();
    void theMeasuredRateFallsToNothingWithoutFrames();
    void aPartOfTheSensorIsCutOut();
};

void TestCapture::buffersAreFilledInTurn()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.capture();
    for (int i = 0; i < 7; ++i) {
        QVERIFY(kelvosim::pushFrame(Serial, evenFrame(static_cast<std::uint8_t>(i))));
        QCOMPARE(static_cast<const void *>(camera.last()),
                 static_cast<const void *>(camera.buffers[static_cast<std::size_t>(i) % 3]));
    }
    QCOMPARE(kelvosim::completedFrames(Serial), std::uint64_t(7));
}

void TestCapture::theLastCompleteBufferIsNamed()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.capture();
    kelvosim::pushFrame(Serial, evenFrame(42));
    std::int32_t number = 0;
    char *current = nullptr;
    char *last = nullptr;
    QCOMPARE(vx_GetActSeqBuf(camera.handle, &number, &current, &last), 0);
    QCOMPARE(number, 2);
    QVERIFY(current == camera.buffers[1]);
    QVERIFY(last == camera.buffers[0]);
    QCOMPARE(static_cast<std::uint8_t>(last[100]), std::uint8_t(42));
}

void TestCapture::noBufferIsNamedBeforeTheFirstFrame()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.capture();
    char *last = nullptr;
    QVERIFY(vx_GetActSeqBuf(camera.handle, nullptr, nullptr, &last) != 0);
    QVERIFY(!last);
    QVERIFY(vx_GetActSeqBuf(camera.handle, nullptr, nullptr, nullptr) != 0);
}

void TestCapture::aLockedBufferIsNeverWritten()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.capture();
    kelvosim::pushFrame(Serial, evenFrame(1));
    QCOMPARE(vx_LockSeqBuf(camera.handle, -1, camera.buffers[0]), 0);
    QCOMPARE(kelvosim::lockedBuffers(), 1);
    std::set<char *> used;
    for (int i = 0; i < 6; ++i) {
        kelvosim::pushFrame(Serial, evenFrame(9));
        used.insert(camera.last());
    }
    QCOMPARE(used, (std::set<char *>{camera.buffers[1], camera.buffers[2]}));
    QCOMPARE(static_cast<int>(camera.buffers[0][5]), 1);
    QCOMPARE(vx_UnlockSeqBuf(camera.handle, -1, camera.buffers[0]), 0);
    kelvosim::pushFrame(Serial, evenFrame(9));
    QVERIFY(camera.last() == camera.buffers[0]);
}

void TestCapture::aLockedBufferStaysUntouchedByALiveCamera()
{
    kelvosim::addCamera(smallCamera(true));
    kelvosim::overrideFrameRate(Serial, 1000);
    OpenedCamera camera;
    camera.capture();
    for (int round = 0; round < 20; ++round) {
        QCOMPARE(waitFor(camera.handle, {2}, Patience), 2u);
        char *const memory = camera.last();
        if (vx_LockSeqBuf(camera.handle, -1, memory) != 0)
            continue; // the camera came round to it
        const std::vector<char> before(memory, memory + 64 * 48);
        const std::uint64_t frames = kelvosim::completedFrames(Serial);
        QTRY_VERIFY(kelvosim::completedFrames(Serial) > frames + 4);
        QVERIFY(std::equal(before.begin(), before.end(), memory));
        QCOMPARE(vx_UnlockSeqBuf(camera.handle, -1, memory), 0);
    }
}

void TestCapture::allBuffersLockedFailsTheFrame()
{
    kelvosim::addCamera(smallCamera(true));
    OpenedCamera camera;
    camera.addBuffers();
    for (char *const memory : camera.buffers)
        QCOMPARE(vx_LockSeqBuf(camera.handle, -1, memory), 0);
    QCOMPARE(kelvosim::lockedBuffers(), 3);
    camera.capture();
    QCOMPARE(waitFor(camera.handle, {2, 8}, Patience), 8u);
    QCOMPARE(kelvosim::completedFrames(Serial), std::uint64_t(0));
    QVERIFY(!kelvosim::pushFrame(Serial, {}));
}

void TestCapture::aBufferCannotBeLockedTwice()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.addBuffers(1);
    QCOMPARE(vx_LockSeqBuf(camera.handle, -1, camera.buffers[0]), 0);
    QVERIFY(vx_LockSeqBuf(camera.handle, -1, camera.buffers[0]) != 0);
    QCOMPARE(vx_UnlockSeqBuf(camera.handle, -1, camera.buffers[0]), 0);
    QVERIFY(vx_UnlockSeqBuf(camera.handle, -1, camera.buffers[0]) != 0);
}

void TestCapture::buffersCanBeNamedByTheirNumber()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.capture();
    QCOMPARE(vx_LockSeqBuf(camera.handle, 1, nullptr), 0);
    kelvosim::pushFrame(Serial, {});
    QVERIFY(camera.last() == camera.buffers[1]);
    QCOMPARE(vx_UnlockSeqBuf(camera.handle, 1, nullptr), 0);
    QVERIFY(vx_LockSeqBuf(camera.handle, 0, nullptr) != 0);
    QVERIFY(vx_LockSeqBuf(camera.handle, 4, nullptr) != 0);
}

void TestCapture::rowsArePaddedTo32Bits()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.width = 61;
    spec.height = 5;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    camera.capture();
    std::vector<std::uint8_t> pixels(61 * 5);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint8_t>(i % 61 + i / 61);
    kelvosim::pushFrame(Serial, pixels);
    const auto *const memory = reinterpret_cast<std::uint8_t *>(camera.last());
    for (int y = 0; y < 5; ++y)
        QCOMPARE(memory[64 * y + 60], std::uint8_t(60 + y));
}

void TestCapture::pushedFramesFillRowsWithoutTheirPadding()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.capture();
    kelvosim::pushFrame(Serial, evenFrame(200));
    kelvosim::pushFrame(Serial, evenFrame(200));
    kelvosim::pushFrame(Serial, evenFrame(200));
    kelvosim::pushFrame(Serial, std::vector<std::uint8_t>(70, 3));
    const auto *const memory = reinterpret_cast<std::uint8_t *>(camera.last());
    QCOMPARE(memory[69], std::uint8_t(3));
    QCOMPARE(memory[70], std::uint8_t(0));
    QCOMPARE(memory[64 * 48 - 1], std::uint8_t(0));
}

void TestCapture::aCapturingCameraSignalsFrames()
{
    kelvosim::addCamera(smallCamera(true));
    OpenedCamera camera;
    camera.capture();
    for (int i = 0; i < 5; ++i)
        QCOMPARE(waitFor(camera.handle, {2, 8}, Patience), 2u);
    QVERIFY(kelvosim::completedFrames(Serial) >= 5);
}

void TestCapture::aBufferMayBeFreedWhileTheCameraCaptures()
{
    kelvosim::addCamera(smallCamera(true));
    kelvosim::overrideFrameRate(Serial, 1000);
    OpenedCamera camera;
    camera.addBuffers(6);
    camera.capture();
    for (std::size_t i = 0; i < 5; ++i) {
        QCOMPARE(waitFor(camera.handle, {2}, Patience), 2u);
        QCOMPARE(vx_FreeImageMem(camera.handle, camera.buffers[i], camera.ids[i]), 0);
    }
    QCOMPARE(kelvosim::allocatedBuffers(), 1);
    const std::uint64_t frames = kelvosim::completedFrames(Serial);
    QTRY_VERIFY(kelvosim::completedFrames(Serial) > frames + 3);
    QVERIFY(camera.last() == camera.buffers[5]);
}

void TestCapture::clearingTheSequenceLetsNoFrameThrough()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.capture();
    kelvosim::pushFrame(Serial, {});
    QCOMPARE(vx_ClearSequence(camera.handle), 0);
    QVERIFY(!camera.last());
    QVERIFY(!kelvosim::pushFrame(Serial, {}));
    QCOMPARE(kelvosim::allocatedBuffers(), 3);
}

/// The frames are so large that one is nearly always being written.
void TestCapture::stoppingWaitsUntilNothingIsWritten()
{
    kelvosim::CameraSpec spec = smallCamera(true);
    spec.width = 2592;
    spec.height = 1944;
    kelvosim::addCamera(spec);
    kelvosim::overrideFrameRate(Serial, 10000);
    OpenedCamera camera;
    for (int round = 0; round < 3; ++round) {
        camera.capture();
        QCOMPARE(waitFor(camera.handle, {2}, Patience), 2u);
        QCOMPARE(vx_StopLiveVideo(camera.handle, 1), 0);
        const std::uint64_t frames = kelvosim::completedFrames(Serial);
        waitFor(camera.handle, {2}, 0);
        QCOMPARE(waitFor(camera.handle, {2}, 200), 0u);
        QCOMPARE(kelvosim::completedFrames(Serial), frames);
    }
}

void TestCapture::exitFreesWhatIsLeft()
{
    kelvosim::addCamera(smallCamera(true));
    {
        OpenedCamera camera;
        camera.capture();
        QCOMPARE(kelvosim::openHandles(), 1);
        QCOMPARE(kelvosim::allocatedBuffers(), 3);
        vx_LockSeqBuf(camera.handle, 1, nullptr);
    }
    QCOMPARE(kelvosim::openHandles(), 0);
    QCOMPARE(kelvosim::enabledEvents(), 0);
}

void TestCapture::whatIsLeftToExitCountsUntilReset()
{
    kelvosim::addCamera(smallCamera());
    for (int round = 1; round <= 2; ++round) {
        OpenedCamera camera;
        camera.addBuffers(3);
        QCOMPARE(vx_FreeImageMem(camera.handle, camera.buffers[0], camera.ids[0]), 0);
        QCOMPARE(vx_LockSeqBuf(camera.handle, 1, nullptr), 0);
        QCOMPARE(vx_ExitCamera(camera.handle), 0);
        QCOMPARE(kelvosim::allocatedBuffers(), 2 * round);
        QCOMPARE(kelvosim::lockedBuffers(), round);
    }
    kelvosim::reset();
    QCOMPARE(kelvosim::allocatedBuffers(), 0);
    QCOMPARE(kelvosim::lockedBuffers(), 0);
}

void TestCapture::whatIsFreedBeforeExitIsForgotten()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.addBuffers(3);
    camera.freeBuffers();
    QCOMPARE(vx_ExitCamera(camera.handle), 0);
    QCOMPARE(kelvosim::allocatedBuffers(), 0);
}

void TestCapture::freezeTakesOneFrameWithoutAnEvent()
{
    kelvosim::addCamera(smallCamera(true));
    OpenedCamera camera;
    camera.addBuffers();
    enableEvents(camera.handle, {2});
    QCOMPARE(vx_FreezeVideo(camera.handle, 1), 0);
    QVERIFY(camera.last() == camera.buffers[0]);
    QCOMPARE(kelvosim::completedFrames(Serial), std::uint64_t(1));
    QCOMPARE(waitFor(camera.handle, {2}, 0), 0u);
    kelvosim::unplug(Serial);
    QVERIFY(vx_FreezeVideo(camera.handle, 1) != 0);
}

void TestCapture::freezeWithoutWaitingSignalsItsFrame()
{
    kelvosim::addCamera(smallCamera(true));
    OpenedCamera camera;
    QVERIFY(vx_FreezeVideo(camera.handle, 0) != 0);
    camera.addBuffers();
    enableEvents(camera.handle, {2});
    QCOMPARE(vx_FreezeVideo(camera.handle, 0), 0);
    QCOMPARE(waitFor(camera.handle, {2}, Patience), 2u);
    QCOMPARE(kelvosim::completedFrames(Serial), std::uint64_t(1));
}

void TestCapture::freezeWithoutWaitingSignalsItsFailure()
{
    kelvosim::addCamera(smallCamera(true));
    OpenedCamera camera;
    camera.addBuffers(1);
    QCOMPARE(vx_LockSeqBuf(camera.handle, 1, nullptr), 0);
    enableEvents(camera.handle, {2, 8});
    QVERIFY(vx_FreezeVideo(camera.handle, 1) != 0);
    QCOMPARE(waitFor(camera.handle, {2, 8}, 0), 0u);
    QCOMPARE(vx_FreezeVideo(camera.handle, 0), 0);
    QCOMPARE(waitFor(camera.handle, {2, 8}, Patience), 8u);
}

/// The camera is so slow that it goes away before the frame is due.
void TestCapture::anInterruptedFreezeLeavesNoFrameToCome()
{
    kelvosim::addCamera(smallCamera(true));
    kelvosim::overrideFrameRate(Serial, 0.01);
    OpenedCamera camera;
    camera.addBuffers();
    kelvosim::clearLog();
    std::int32_t status = 0;
    std::thread thread([&] { status = vx_FreezeVideo(camera.handle, 1); });
    QTRY_COMPARE(kelvosim::log().size(), std::size_t(1));
    kelvosim::unplug(Serial);
    thread.join();
    QVERIFY(status != 0);
    kelvosim::overrideFrameRate(Serial, 1000);
    kelvosim::plug(Serial);
    QCOMPARE(vx_FreezeVideo(camera.handle, 1), 0);
    QCOMPARE(kelvosim::completedFrames(Serial), std::uint64_t(1));
}

/// Even when nobody looks for a while: a failure waits until the one before it was taken notice of.
void TestCapture::failedFramesAreSignalledOneByOne()
{
    kelvosim::addCamera(smallCamera(true));
    kelvosim::overrideFrameRate(Serial, 1000);
    OpenedCamera camera;
    camera.capture();
    kelvosim::failFrames(Serial, 10);
    QTRY_VERIFY(kelvosim::completedFrames(Serial) > 30);
    for (int i = 0; i < 10; ++i)
        QCOMPARE(waitFor(camera.handle, {8}, Patience), 8u);
    QCOMPARE(waitFor(camera.handle, {8}, 20), 0u);
}

void TestCapture::failuresReachACameraThatIsFedByHand()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::overrideFrameRate(Serial, 1000);
    OpenedCamera camera;
    camera.capture();
    kelvosim::failFrames(Serial, 2);
    for (int i = 0; i < 2; ++i)
        QCOMPARE(waitFor(camera.handle, {8}, Patience), 8u);
    QCOMPARE(kelvosim::completedFrames(Serial), std::uint64_t(0));
}

void TestCapture::anImpossibleNumberOfFailuresFailsNothing()
{
    kelvosim::addCamera(smallCamera(true));
    kelvosim::overrideFrameRate(Serial, 1000);
    OpenedCamera camera;
    camera.capture();
    for (const int count : {0, -1, std::numeric_limits<int>::min()})
        kelvosim::failFrames(Serial, count);
    QTRY_VERIFY(kelvosim::completedFrames(Serial) > 5);
    QCOMPARE(waitFor(camera.handle, {8}, 0), 0u);
}

void TestCapture::theLargestNumbersOfFailuresAddUp()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::overrideFrameRate(Serial, 1000);
    OpenedCamera camera;
    camera.capture();
    for (int i = 0; i < 4; ++i)
        kelvosim::failFrames(Serial, std::numeric_limits<int>::max());
    for (int i = 0; i < 3; ++i)
        QCOMPARE(waitFor(camera.handle, {8}, Patience), 8u);
}

void TestCapture::anUnpluggedCameraPausesAndResumes()
{
    kelvosim::addCamera(smallCamera(true));
    OpenedCamera camera;
    camera.capture();
    QCOMPARE(waitFor(camera.handle, {2}, Patience), 2u);
    kelvosim::unplug(Serial);
    QCOMPARE(waitFor(camera.handle, {128}, Patience), 128u);
    double rate = 1.0;
    QCOMPARE(vx_GetFramesPerSecond(camera.handle, &rate), 0);
    QCOMPARE(rate, 0.0);
    QCOMPARE(vx_StopLiveVideo(camera.handle, 1), 0);
    QCOMPARE(vx_CaptureVideo(camera.handle, 0), 0);
    waitFor(camera.handle, {2}, 0);
    QCOMPARE(waitFor(camera.handle, {2}, 60), 0u);
    kelvosim::plug(Serial);
    QCOMPARE(waitFor(camera.handle, {9}, Patience), 9u);
    QCOMPARE(waitFor(camera.handle, {2}, Patience), 2u);
}

void TestCapture::captureStartsTwiceAndStopsTwice()
{
    kelvosim::addCamera(smallCamera(true));
    OpenedCamera camera;
    QVERIFY(vx_CaptureVideo(camera.handle, 0) != 0);
    camera.capture();
    QCOMPARE(vx_CaptureVideo(camera.handle, 1), 0);
    QCOMPARE(vx_StopLiveVideo(camera.handle, 1), 0);
    QCOMPARE(vx_StopLiveVideo(camera.handle, 0), 0);
}

void TestCapture::unknownBuffersAreRefused()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    camera.addBuffers(1);
    char stranger = 0;
    char *const own = camera.buffers[0];
    QVERIFY(vx_FreeImageMem(camera.handle, &stranger, 1) != 0);
    QVERIFY(vx_FreeImageMem(camera.handle, own, camera.ids[0] + 1) != 0);
    QVERIFY(vx_AddToSequence(camera.handle, &stranger, 1) != 0);
    QVERIFY(vx_AddToSequence(camera.handle, own, camera.ids[0]) != 0);
    QVERIFY(vx_LockSeqBuf(camera.handle, -1, &stranger) != 0);
    char *memory = nullptr;
    std::int32_t id = 0;
    QVERIFY(vx_AllocImageMem(camera.handle, 0, 48, 8, &memory, &id) != 0);
    QVERIFY(vx_AllocImageMem(camera.handle, 64, -1, 8, &memory, &id) != 0);
    QVERIFY(vx_AllocImageMem(camera.handle, 64, 48, 7, &memory, &id) != 0);
    QVERIFY(vx_AllocImageMem(camera.handle, 64, 48, 8, nullptr, &id) != 0);
    QCOMPARE(vx_AllocImageMem(camera.handle, 64, 48, 32, &memory, &id), 0);
    QVERIFY(vx_AddToSequence(camera.handle, memory, id) != 0);
    QCOMPARE(kelvosim::allocatedBuffers(), 2);
}

void TestCapture::aThousandRoundsLeaveNothingBehind()
{
    kelvosim::addCamera(smallCamera(true));
    kelvosim::setLogging(false);
    for (int round = 0; round < 1000; ++round) {
        OpenedCamera camera;
        camera.capture();
        camera.freeBuffers();
    }
    QCOMPARE(kelvosim::openHandles(), 0);
    QCOMPARE(kelvosim::allocatedBuffers(), 0);
    QCOMPARE(kelvosim::enabledEvents(), 0);
}

void TestCapture::fiveHundredFramesASecondAreReached()
{
    kelvosim::addCamera(smallCamera(true));
    kelvosim::overrideFrameRate(Serial, 500);
    OpenedCamera camera;
    camera.capture();
    QTRY_VERIFY(kelvosim::completedFrames(Serial) >= 250);
    double rate = 0.0;
    QCOMPARE(vx_GetFramesPerSecond(camera.handle, &rate), 0);
    QVERIFY2(rate > 100.0, qPrintable(QString::number(rate)));
    QVERIFY2(rate < 600.0, qPrintable(QString::number(rate)));
}

void TestCapture::theMeasuredRateStartsAtTheSetOne()
{
    kelvosim::addCamera(smallCamera());
    OpenedCamera camera;
    double set = 0.0;
    QCOMPARE(vx_SetFrameRate(camera.handle, 12.0, &set), 0);
    camera.capture();
    double rate = 0.0;
    QCOMPARE(vx_GetFramesPerSecond(camera.handle, &rate), 0);
    QCOMPARE(rate, set);
}

void TestCapture::theMeasuredRateFallsToNothingWithoutFrames_data()
{
    QTest::addColumn<int>("frames");
    QTest::newRow("never one") << 0;
    QTest::newRow("one") << 1;
    QTest::newRow("some") << 5;
}

void TestCapture::theMeasuredRateFallsToNothingWithoutFrames()
{
    QFETCH(int, frames);
    kelvosim::addCamera(smallCamera());
    kelvosim::overrideFrameRate(Serial, 1000);
    OpenedCamera camera;
    camera.capture();
    for (int i = 0; i < frames; ++i)
        kelvosim::pushFrame(Serial, {});
    const auto rate = [&camera] {
        double value = -1.0;
        require(vx_GetFramesPerSecond(camera.handle, &value), "vx_GetFramesPerSecond");
        return value;
    };
    QVERIFY(rate() > 0.0);
    QTRY_COMPARE(rate(), 0.0);
}

void TestCapture::aPartOfTheSensorIsCutOut()
{
    kelvosim::CameraSpec spec = smallCamera(true);
    spec.lensCap = true;
    kelvosim::addCamera(spec);
    const std::vector<kelvosim::HotPixel> planted = kelvosim::plantedHotPixels(Serial);
    const kelvosim::Pixel strongest = planted.front().at;
    OpenedCamera camera;
    const std::int32_t x = strongest.x - 1;
    std::int32_t area[4] = {x, strongest.y, 3, 1};
    QCOMPARE(vx_AOI(camera.handle, 1, area, sizeof area), 0);
    camera.width = 3;
    camera.height = 1;
    const std::vector<std::uint8_t> pixels = camera.frame();
    QVERIFY(pixels[1] > 60);
    QVERIFY(pixels[0] < pixels[1] / 2);
    std::int32_t outside[4] = {62, 0, 3, 1};
    QVERIFY(vx_AOI(camera.handle, 1, outside, sizeof outside) != 0);
}

QTEST_GUILESS_MAIN(TestCapture)
#include "tst_capture.moc"
