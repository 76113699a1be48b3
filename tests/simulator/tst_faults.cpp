// SPDX-License-Identifier: MIT
// Faults, delays and blocks on demand, and the log of calls.

#include "programside.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

using namespace programside;

namespace {

std::int32_t countCameras()
{
    std::int32_t count = 0;
    return vx_GetNumberOfCameras(&count);
}

} // namespace

class TestFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theNthCallFails();
    void everyCallFails();
    void oneCommandFails();
    void aFailingCallDoesNothing();
    void queryFormsReturnTheStatus();
    void anEmptyTextSilencesGetError();
    void getErrorItselfMayFail();
    void aPathOfAWrongSizeIsNotRead();
    void theNthCallOfAllFails();
    void exitAndGetErrorAreNeverCounted();
    void aDelayedCallTakesItsTime();
    void clearingEndsDelays();
    void aBlockedCallWaitsForItsRelease();
    void aCameraIsUnpluggedInTheMiddleOfACall();
    void otherThreadsAndTheVisitorsOwnCallsAreNotVisited();
    void callsAreLoggedWithArgumentsAndResults();
    void passedDataIsLogged();
    void callsAreLoggedInTheOrderInWhichTheyBegin();
    void eachThreadSeesItsOwnCalls();
    void loggingCanBeSwitchedOff();
    void clearingTheLogForgetsRunningCalls();
    void resetClosesWhatIsOpen();
};

void TestFaults::init()
{
    kelvosim::reset();
    kelvosim::addCamera(smallCamera());
}

void TestFaults::theNthCallFails()
{
    kelvosim::failCall("vx_GetNumberOfCameras", 2, 99, "out of luck");
    QCOMPARE(countCameras(), 0);
    QCOMPARE(countCameras(), 99);
    QCOMPARE(errorText(0), std::string("out of luck"));
    QCOMPARE(countCameras(), 0);
}

void TestFaults::everyCallFails()
{
    kelvosim::failCall("vx_GetNumberOfCameras", kelvosim::EveryCall, 7, "never");
    for (int i = 0; i < 5; ++i)
        QCOMPARE(countCameras(), 7);
    kelvosim::clearFaults();
    QCOMPARE(countCameras(), 0);
}

void TestFaults::oneCommandFails()
{
    const OpenedCamera camera;
    kelvosim::failCall("vx_HotPixel", 1, 42, "refused", 33037);
    std::uint32_t count = 0;
    QCOMPARE(vx_HotPixel(camera.handle, 33034, &count, 4), 0);
    QCOMPARE(vx_HotPixel(camera.handle, 33037, &count, 4), 42);
    QCOMPARE(errorText(camera.handle), std::string("refused"));
    QCOMPARE(vx_HotPixel(camera.handle, 33037, &count, 4), 0);
}

void TestFaults::aFailingCallDoesNothing()
{
    const OpenedCamera camera;
    const std::int32_t before = vx_SetPixelClock(camera.handle, 32768);
    kelvosim::failCall("vx_SetPixelClock", 1, 5, "stuck", 10);
    QCOMPARE(vx_SetPixelClock(camera.handle, 10), 5);
    QCOMPARE(vx_SetPixelClock(camera.handle, 32768), before);
    kelvosim::failCall("vx_InitCamera", 1, 5, "stuck");
    std::uint32_t handle = 77;
    QCOMPARE(vx_InitCamera(&handle, nullptr), 5);
    QCOMPARE(handle, 77u);
}

void TestFaults::queryFormsReturnTheStatus()
{
    const OpenedCamera camera;
    kelvosim::failCall("vx_SetColorMode", 1, 3, "", 32768);
    kelvosim::failCall("vx_SetHardwareGain", 1, 4, "", 32768);
    kelvosim::failCall("vx_SetExposureTime", 1, 6, "", 32769);
    QCOMPARE(vx_SetColorMode(camera.handle, 11), 0);
    QCOMPARE(vx_SetColorMode(camera.handle, 32768), 3);
    QCOMPARE(vx_SetHardwareGain(camera.handle, 32768, -1, -1, -1), 4);
    double actual = 0.0;
    QCOMPARE(vx_SetExposureTime(camera.handle, 32768.0, &actual), 0);
    QCOMPARE(vx_SetExposureTime(camera.handle, 32769.0, &actual), 6);
}

void TestFaults::anEmptyTextSilencesGetError()
{
    const OpenedCamera camera;
    kelvosim::failCall("vx_StopLiveVideo", 1, 3, "");
    QCOMPARE(vx_StopLiveVideo(camera.handle, 1), 3);
    std::int32_t code = 0;
    char *text = nullptr;
    QVERIFY(vx_GetError(camera.handle, &code, &text) != 0);
    QVERIFY(vx_SetPixelClock(camera.handle, 9999) != 0);
    QCOMPARE(errorText(camera.handle), std::string("The pixel clock is out of range."));
}

void TestFaults::getErrorItselfMayFail()
{
    const OpenedCamera camera;
    vx_SetPixelClock(camera.handle, 9999);
    kelvosim::failGetError(true);
    QCOMPARE(errorText(camera.handle), std::string());
    kelvosim::failGetError(false);
    QCOMPARE(errorText(camera.handle), std::string("The pixel clock is out of range."));
    for (const char *const text : {"", "out of words"}) {
        kelvosim::failCall("vx_GetError", 1, 5, text);
        QCOMPARE(errorText(camera.handle), std::string());
        QCOMPARE(errorText(camera.handle), std::string("The pixel clock is out of range."));
    }
}

/// The bytes end without a NUL: an address sanitizer would tell of a step beyond them.
void TestFaults::aPathOfAWrongSizeIsNotRead()
{
    const OpenedCamera camera;
    const auto path = std::make_unique<wchar_t[]>(2);
    path[0] = path[1] = L'x';
    kelvosim::clearLog();
    for (const std::uint32_t command : {33041u, 33042u})
        QVERIFY(vx_HotPixel(camera.handle, command, path.get(), 2 * sizeof(wchar_t)) != 0);
    QCOMPARE(kelvosim::log()[0].arguments, std::to_string(2 * sizeof(wchar_t)));
}

void TestFaults::theNthCallOfAllFails()
{
    kelvosim::failNthCall(3, false, 8, "third");
    QCOMPARE(countCameras(), 0);
    QVERIFY(vx_GetCameraList(nullptr) != 8);
    QCOMPARE(countCameras(), 8);
    QCOMPARE(countCameras(), 0);
    kelvosim::failNthCall(2, true, 9, "from here on");
    QCOMPARE(countCameras(), 0);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(countCameras(), 9);
    QCOMPARE(errorText(0), std::string("from here on"));
}

void TestFaults::exitAndGetErrorAreNeverCounted()
{
    std::uint32_t handle = DeviceId | DeviceFlag;
    QCOMPARE(vx_InitCamera(&handle, nullptr), 0);
    kelvosim::failNthCall(1, true, 9, "all");
    errorText(handle);
    QCOMPARE(vx_ExitCamera(handle), 0);
    QCOMPARE(countCameras(), 9);
}

void TestFaults::aDelayedCallTakesItsTime()
{
    kelvosim::delayCall("vx_GetNumberOfCameras", 50);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(countCameras(), 0);
    QVERIFY(timer.elapsed() >= 49);
}

void TestFaults::clearingEndsDelays()
{
    kelvosim::delayCall("vx_GetNumberOfCameras", 600000);
    std::thread thread(countCameras);
    QTRY_COMPARE(kelvosim::log().size(), std::size_t(1));
    kelvosim::clearFaults();
    thread.join();
    QVERIFY(kelvosim::log().front().returned);
}

void TestFaults::aBlockedCallWaitsForItsRelease()
{
    kelvosim::blockCall("vx_GetNumberOfCameras");
    std::atomic<bool> returned{false};
    std::thread thread([&returned] {
        countCameras();
        returned = true;
    });
    QTRY_COMPARE(kelvosim::blockedCalls(), 1);
    QVERIFY(!returned);
    QVERIFY(vx_GetCameraList(nullptr) != 0);
    kelvosim::releaseCalls();
    thread.join();
    QVERIFY(returned);
    QCOMPARE(countCameras(), 0);
}

void TestFaults::aCameraIsUnpluggedInTheMiddleOfACall()
{
    int visits = 0;
    kelvosim::duringCallsHere([&] {
        if (++visits == 1)
            kelvosim::unplug(smallCamera().serial);
    });
    std::int32_t count = 9;
    QCOMPARE(vx_GetNumberOfCameras(&count), 0);
    QCOMPARE(count, 0);
    QCOMPARE(visits, 2);
    kelvosim::duringCallsHere({});
    QCOMPARE(countCameras(), 0);
    QCOMPARE(visits, 2);
}

void TestFaults::otherThreadsAndTheVisitorsOwnCallsAreNotVisited()
{
    int visits = 0;
    kelvosim::duringCallsHere([&] {
        ++visits;
        countCameras();
    });
    std::thread thread(countCameras);
    thread.join();
    QCOMPARE(visits, 0);
    countCameras();
    QCOMPARE(visits, 2);
    kelvosim::reset();
    countCameras();
    QCOMPARE(visits, 2);
}

void TestFaults::callsAreLoggedWithArgumentsAndResults()
{
    const OpenedCamera camera;
    kelvosim::clearLog();
    double actual = 0.0;
    vx_SetExposureTime(camera.handle, 12.5, &actual);
    vx_SetHardwareGain(camera.handle, 500, 1, 2, 3);
    vx_LoadParameters(camera.handle, "./none.ini");
    const std::vector<kelvosim::Call> log = kelvosim::log();
    QCOMPARE(log.size(), std::size_t(3));
    QCOMPARE(log[0].function, std::string("vx_SetExposureTime"));
    QCOMPARE(log[0].handle, camera.handle);
    QCOMPARE(log[0].command, std::int64_t(12));
    QCOMPARE(log[0].numbers, std::vector<double>{12.5});
    QVERIFY(log[0].returned);
    QCOMPARE(log[1].command, std::int64_t(500));
    QCOMPARE(log[1].numbers, (std::vector<double>{1, 2, 3}));
    QCOMPARE(log[1].arguments, std::string("1, 2, 3"));
    QVERIFY(log[1].result != 0);
    QCOMPARE(log[2].arguments, std::string("./none.ini"));
    QCOMPARE(log[2].result, 50);
    QCOMPARE(kelvosim::name(log[0]), std::string("vx_SetExposureTime 12"));
    QCOMPARE(kelvosim::name(log[2]), std::string("vx_LoadParameters"));
}

void TestFaults::passedDataIsLogged()
{
    const OpenedCamera camera;
    kelvosim::clearLog();
    sendList(camera.handle, 33027, {{1, 2}});
    std::wstring path = L"/tmp/n\u00e4me";
    vx_HotPixel(camera.handle, 33042, &path[0], 0);
    registerEvent(camera.handle, 2);
    const std::vector<kelvosim::Call> log = kelvosim::log();
    QCOMPARE(log[0].data, (std::vector<std::uint8_t>{1, 0, 1, 0, 2, 0}));
    QVERIFY(log[1].arguments.find("/tmp/n\xC3\xA4me") != std::string::npos);
    QVERIFY(log[1].data.empty());
    QCOMPARE(log[2].data.size(), std::size_t(12));
    QCOMPARE(log[2].data.front(), std::uint8_t(2));
}

void TestFaults::callsAreLoggedInTheOrderInWhichTheyBegin()
{
    enableEvents(0, {5});
    kelvosim::clearLog();
    std::thread thread([] { waitFor(0, {5}, 0xFFFFFFFF); });
    QTRY_COMPARE(kelvosim::waitingThreads(), 1);
    QVERIFY(!kelvosim::log().front().returned);
    signalEvent(0, 5);
    thread.join();
    const std::vector<kelvosim::Call> log = kelvosim::log();
    QCOMPARE(kelvosim::name(log[0]), std::string("vx_Event 7"));
    QCOMPARE(kelvosim::name(log[1]), std::string("vx_Event 5"));
    QVERIFY(log[0].returned);
    QVERIFY(log[0].thread != log[1].thread);
}

void TestFaults::eachThreadSeesItsOwnCalls()
{
    countCameras();
    std::vector<std::string> elsewhere;
    std::thread thread([&elsewhere] {
        std::uint32_t code = 5;
        vx_Event(0, 5, &code, 4);
        errorText(0);
        elsewhere = kelvosim::calledHere();
    });
    thread.join();
    QCOMPARE(elsewhere, std::vector<std::string>{"vx_Event 5"});
    QCOMPARE(kelvosim::calledHere(), std::vector<std::string>{"vx_GetNumberOfCameras"});
}

void TestFaults::loggingCanBeSwitchedOff()
{
    kelvosim::setLogging(false);
    countCameras();
    QVERIFY(kelvosim::log().empty());
    kelvosim::setLogging(true);
    countCameras();
    QCOMPARE(kelvosim::log().size(), std::size_t(1));
}

void TestFaults::clearingTheLogForgetsRunningCalls()
{
    kelvosim::blockCall("vx_GetNumberOfCameras");
    std::thread thread(countCameras);
    QTRY_COMPARE(kelvosim::blockedCalls(), 1);
    kelvosim::clearLog();
    vx_GetCameraList(nullptr);
    kelvosim::releaseCalls();
    thread.join();
    QCOMPARE(kelvosim::log().size(), std::size_t(1));
    QCOMPARE(kelvosim::log().front().function, std::string("vx_GetCameraList"));
}

void TestFaults::resetClosesWhatIsOpen()
{
    OpenedCamera camera;
    camera.capture();
    kelvosim::reset();
    QCOMPARE(kelvosim::openHandles(), 0);
    QCOMPARE(kelvosim::allocatedBuffers(), 0);
    QVERIFY(vx_StopLiveVideo(camera.handle, 1) != 0);
    std::int32_t count = 9;
    QCOMPARE(vx_GetNumberOfCameras(&count), 0);
    QCOMPARE(count, 0);
}

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
