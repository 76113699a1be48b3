// SPDX-License-Identifier: MIT
// Events: sticky, coalescing, per handle, awaited by many threads, and safe to cancel.

#include "programside.h"

#include <pthread.h>

#include <atomic>
#include <thread>

using namespace programside;

namespace {

std::uint32_t waitForever(std::uint32_t handle, std::vector<std::uint32_t> codes)
{
    return waitFor(handle, std::move(codes), 0xFFFFFFFF);
}

void *waitOnFive(void *)
{
    waitForever(0, {5});
    return nullptr;
}

void *blockedCount(void *)
{
    std::int32_t count = 0;
    vx_GetNumberOfCameras(&count);
    return nullptr;
}

void *canceledResult(pthread_t thread)
{
    void *result = nullptr;
    pthread_cancel(thread);
    pthread_join(thread, &result);
    return result;
}

} // namespace

class TestEvents : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void anEventSignalledBeforeTheWaitReturnsAtOnce();
    void severalSignalsCountAsOne();
    void aWaitTakesOneEventInTheOrderOfItsArray();
    void aWaitForAllTakesThemAll();
    void aWaitTimesOutWithAFailure();
    void handlesDoNotShareEvents();
    void manyThreadsWaitOnOneHandle();
    void anUnregisteredEventCannotBeEnabledOrSignalled();
    void aWaitOnADisabledEventFails();
    void disablingEndsWaits();
    void oneListenersEndLeavesTheOthersTheirEvents();
    void closingTheCameraEndsItsWaits();
    void aCancelledWaitLeavesTheLibraryUsable();
    void aCancelledBlockedCallLeavesTheLibraryUsable();
    void wrongSizesAndPointersAreRefused();
    void pluggingIsAnnounced();
    void resetForgetsEvents();
};

void TestEvents::init()
{
    kelvosim::reset();
    kelvosim::addCamera(smallCamera());
}

void TestEvents::anEventSignalledBeforeTheWaitReturnsAtOnce()
{
    QCOMPARE(enableEvents(0, {5}), 0);
    QCOMPARE(signalEvent(0, 5), 0);
    QCOMPARE(waitFor(0, {5}, 0), 5u);
    QCOMPARE(waitFor(0, {5}, 0), 0u);
}

void TestEvents::severalSignalsCountAsOne()
{
    enableEvents(0, {5});
    for (int i = 0; i < 10; ++i)
        signalEvent(0, 5);
    QCOMPARE(waitFor(0, {5}, 0), 5u);
    QCOMPARE(waitFor(0, {5}, 0), 0u);
}

void TestEvents::aWaitTakesOneEventInTheOrderOfItsArray()
{
    enableEvents(0, {5, 6, 7});
    for (const std::uint32_t code : {7u, 5u})
        signalEvent(0, code);
    QCOMPARE(waitFor(0, {6, 7, 5}, 0), 7u);
    QCOMPARE(waitFor(0, {6, 7, 5}, 0), 5u);
    QCOMPARE(waitFor(0, {6, 7, 5}, 0), 0u);
}

void TestEvents::aWaitForAllTakesThemAll()
{
    enableEvents(0, {5, 6});
    signalEvent(0, 6);
    QCOMPARE(waitFor(0, {5, 6}, 0, true), 0u);
    signalEvent(0, 5);
    QCOMPARE(waitFor(0, {5, 6}, 0, true), 5u);
    QCOMPARE(waitFor(0, {5, 6}, 0), 0u);
}

void TestEvents::aWaitTimesOutWithAFailure()
{
    enableEvents(0, {5});
    std::uint32_t code = 5;
    WaitRecord record;
    record.codes = &code;
    record.count = 1;
    record.timeout = 20;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(vx_Event(0, 7, &record, sizeof record) != 0);
    QVERIFY(timer.elapsed() >= 19);
    QCOMPARE(errorText(0), std::string("No event was signalled in time."));
}

void TestEvents::handlesDoNotShareEvents()
{
    const OpenedCamera camera;
    enableEvents(0, {5});
    enableEvents(camera.handle, {5});
    signalEvent(camera.handle, 5);
    QCOMPARE(waitFor(0, {5}, 0), 0u);
    QCOMPARE(waitFor(camera.handle, {5}, 0), 5u);
}

void TestEvents::manyThreadsWaitOnOneHandle()
{
    enableEvents(0, {11, 12, 13});
    std::atomic<int> sum{0};
    std::vector<std::thread> threads;
    for (const std::uint32_t code : {11u, 12u, 13u})
        threads.emplace_back([&sum, code] { sum += static_cast<int>(waitForever(0, {code})); });
    QTRY_COMPARE(kelvosim::waitingThreads(), 3);
    for (const std::uint32_t code : {13u, 11u, 12u})
        signalEvent(0, code);
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(sum.load(), 36);
    QCOMPARE(kelvosim::waitingThreads(), 0);
}

void TestEvents::anUnregisteredEventCannotBeEnabledOrSignalled()
{
    std::uint32_t codes[] = {5, 6};
    registerEvent(0, 5);
    QVERIFY(vx_Event(0, 3, codes, sizeof codes) != 0);
    QCOMPARE(kelvosim::enabledEvents(), 0);
    QVERIFY(signalEvent(0, 5) != 0);
    QVERIFY(signalEvent(0, 6) != 0);
}

void TestEvents::aWaitOnADisabledEventFails()
{
    enableEvents(0, {5, 6});
    std::uint32_t code = 5;
    QCOMPARE(vx_Event(0, 2, &code, sizeof code), 0);
    QCOMPARE(kelvosim::enabledEvents(), 1);
    QCOMPARE(waitForever(0, {5, 6}), 0u);
    QVERIFY(vx_Event(0, 2, &code, sizeof code) != 0);
}

void TestEvents::disablingEndsWaits()
{
    enableEvents(0, {5});
    std::thread thread([] { waitForever(0, {5}); });
    QTRY_COMPARE(kelvosim::waitingThreads(), 1);
    std::uint32_t code = 5;
    vx_Event(0, 2, &code, sizeof code);
    thread.join();
    QCOMPARE(kelvosim::waitingThreads(), 0);
}

void TestEvents::oneListenersEndLeavesTheOthersTheirEvents()
{
    enableEvents(0, {5, 6});
    enableEvents(0, {5});
    std::uint32_t result = 0;
    std::thread thread([&result] { result = waitForever(0, {5}); });
    QTRY_COMPARE(kelvosim::waitingThreads(), 1);
    std::uint32_t codes[] = {6, 5};
    QCOMPARE(vx_Event(0, 2, codes, sizeof codes), 0);
    QCOMPARE(kelvosim::enabledEvents(), 1);
    QCOMPARE(signalEvent(0, 5), 0);
    thread.join();
    QCOMPARE(result, 5u);
    QVERIFY(vx_Event(0, 2, codes, sizeof codes) != 0);
    QCOMPARE(kelvosim::enabledEvents(), 0);
}

void TestEvents::closingTheCameraEndsItsWaits()
{
    std::uint32_t result = 1;
    std::thread thread;
    {
        const OpenedCamera camera;
        enableEvents(camera.handle, {2});
        thread = std::thread([&result, handle = camera.handle] { result = waitForever(handle, {2}); });
        QTRY_COMPARE(kelvosim::waitingThreads(), 1);
    }
    thread.join();
    QCOMPARE(result, 0u);
    QCOMPARE(kelvosim::enabledEvents(), 0);
}

void TestEvents::aCancelledWaitLeavesTheLibraryUsable()
{
    enableEvents(0, {5});
    pthread_t thread{};
    QCOMPARE(pthread_create(&thread, nullptr, waitOnFive, nullptr), 0);
    QTRY_COMPARE(kelvosim::waitingThreads(), 1);
    QCOMPARE(canceledResult(thread), PTHREAD_CANCELED);
    QCOMPARE(kelvosim::waitingThreads(), 0);
    QCOMPARE(signalEvent(0, 5), 0);
    QCOMPARE(waitFor(0, {5}, 0), 5u);
}

void TestEvents::aCancelledBlockedCallLeavesTheLibraryUsable()
{
    kelvosim::blockCall("vx_GetNumberOfCameras");
    pthread_t thread{};
    QCOMPARE(pthread_create(&thread, nullptr, blockedCount, nullptr), 0);
    QTRY_COMPARE(kelvosim::blockedCalls(), 1);
    QCOMPARE(canceledResult(thread), PTHREAD_CANCELED);
    QCOMPARE(kelvosim::blockedCalls(), 0);
    kelvosim::releaseCalls();
    std::int32_t count = 0;
    QCOMPARE(vx_GetNumberOfCameras(&count), 0);
    QCOMPARE(count, 1);
    QVERIFY(!kelvosim::log().front().returned);
}

void TestEvents::wrongSizesAndPointersAreRefused()
{
    std::uint32_t words[8] = {};
    for (const std::uint32_t size : {0u, 8u, 16u})
        QVERIFY(vx_Event(0, 1, words, size) != 0);
    for (const std::uint32_t size : {0u, 3u, 6u}) {
        QVERIFY(vx_Event(0, 2, words, size) != 0);
        QVERIFY(vx_Event(0, 3, words, size) != 0);
    }
    QVERIFY(vx_Event(0, 5, words, 8) != 0);
    QVERIFY(vx_Event(0, 7, words, 20) != 0);
    QVERIFY(vx_Event(0, 1, nullptr, 12) != 0);
    QVERIFY(vx_Event(0, 3, nullptr, 4) != 0);
    QVERIFY(vx_Event(0, 9, words, 4) != 0);
    QVERIFY(vx_Event(12345, 1, words, 12) != 0);
    WaitRecord record;
    QVERIFY(vx_Event(0, 7, &record, sizeof record) != 0);
}

void TestEvents::pluggingIsAnnounced()
{
    const OpenedCamera camera;
    enableEvents(0, {129, 130});
    enableEvents(camera.handle, {9, 128});
    kelvosim::unplug(Serial);
    QCOMPARE(waitFor(0, {129, 130}, 0), 129u);
    QCOMPARE(waitFor(camera.handle, {9, 128}, 0), 128u);
    kelvosim::plug(Serial);
    QCOMPARE(waitFor(0, {129, 130}, 0), 130u);
    QCOMPARE(waitFor(camera.handle, {9, 128}, 0), 9u);
    kelvosim::plug(Serial);
    QCOMPARE(waitFor(0, {129, 130}, 0), 0u);
}

void TestEvents::resetForgetsEvents()
{
    enableEvents(0, {5});
    signalEvent(0, 5);
    kelvosim::reset();
    QCOMPARE(kelvosim::enabledEvents(), 0);
    enableEvents(0, {5});
    QCOMPARE(waitFor(0, {5}, 0), 0u);
}

QTEST_GUILESS_MAIN(TestEvents)
#include "tst_events.moc"
