// SPDX-License-Identifier: MIT
// The event thread: its calls, its codes, its end, and frame events that never pile up.

#include "eventthread.h"
#include "kelvosim.h"
#include "testcamera.h"

#include <QtTest>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

constexpr int PoolSize = 200;

/// Takes the events of a thread up in this one, as a window does.
class Receiver : public QObject
{
public:
    explicit Receiver(EventThread *thread)
    {
        connect(thread, &EventThread::eventhappen, this, [this](int event) { events << event; });
    }

    QVector<int> events;
};

} // namespace

class TestEventThread : public QObject
{
    Q_OBJECT

private slots:
    void init() { kelvosim::reset(); }

    void twoHundredThreadsHaveACodeAndTheNextHasNone();
    void codesAreTakenAndReturnedLastInFirstOut();
    void startRegistersEachEventAndItsOwnCodeThenEnablesAll();
    void startReturnsMinusOneWhenAnEventCannotBeRegistered();
    void startReturnsTheStatusWhenEnablingFails();
    void eachSignalledEventIsEmitted();
    void aFailingWaitEmitsNothingAndWaitsAgain();
    void waitsThatFailForEverDoNotKeepTheProcessorBusy();
    void eventsWithoutEndNeitherPileUpNorStopTheReceiver();
    void stopOnAThreadThatWasNeverStartedDoesNothing();
    void stopEndsTheWaitAndDisablesTheEvents();
    void destructionEndsTheThread();
    void aSecondStartReplacesTheList();
    void theThreadRunsAtTheHighestPriority();
    void aSignalledWakeCodeIsEmittedLikeAnyOther();
    void withoutHoldingBackEveryWaitIsEmitted_data();
    void withoutHoldingBackEveryWaitIsEmitted();
    void atMostOneHeldBackEventIsOnItsWay();
    void repetitionsOfAHeldBackEventDoNotKeepTheProcessorBusy();
    void otherEventsPassAHeldBackOne();
};

void TestEventThread::twoHundredThreadsHaveACodeAndTheNextHasNone()
{
    std::vector<std::unique_ptr<EventThread>> threads;
    for (int i = 0; i < PoolSize; ++i)
        threads.push_back(std::make_unique<EventThread>());
    try {
        EventThread oneTooMany;
        QFAIL("the pool should be empty");
    } catch (const std::runtime_error &failure) {
        QCOMPARE(failure.what(), "Too many events :D");
    }
    threads.pop_back();
    threads.push_back(std::make_unique<EventThread>());
    QVERIFY_EXCEPTION_THROWN(EventThread(), std::runtime_error);
    while (!threads.empty()) // last in, first out: the pool is as it was
        threads.pop_back();
}

/// The code of a thread, read from the event that it registers last.
static std::uint32_t codeOf(EventThread &thread)
{
    kelvosim::clearLog();
    thread.start(0, {});
    std::uint32_t code = 0;
    for (const kelvosim::Call &call : kelvosim::log()) {
        if (call.function == "vx_Event" && call.command == 1)
            memcpy(&code, call.data.data(), sizeof code);
    }
    thread.stop();
    thread.wait();
    return code;
}

void TestEventThread::codesAreTakenAndReturnedLastInFirstOut()
{
    auto first = std::make_unique<EventThread>();
    auto second = std::make_unique<EventThread>();
    QCOMPARE(codeOf(*first), 10199u);
    QCOMPARE(codeOf(*second), 10198u);
    first.reset();
    EventThread third;
    QCOMPARE(codeOf(third), 10199u);
}

void TestEventThread::startRegistersEachEventAndItsOwnCodeThenEnablesAll()
{
    EventThread thread;
    kelvosim::clearLog();
    QCOMPARE(thread.start(0, {129, 130}), 0);
    const QStringList expected{"vx_Event 1", "vx_Event 1", "vx_Event 1", "vx_Event 3"};
    QCOMPARE(testcamera::calls(), expected);
    const std::vector<kelvosim::Call> log = kelvosim::log();
    QVector<std::uint32_t> registered;
    QVector<std::uint32_t> enabled(3);
    for (const kelvosim::Call &call : log) {
        std::uint32_t record[3] = {0, 1, 1};
        QVERIFY(call.command == 7 || call.data.size() == 12);
        memcpy(record, call.data.data(), qMin<std::size_t>(12, call.data.size()));
        if (call.command == 1) {
            registered << record[0];
            QCOMPARE(record[1], 0u);
            QCOMPARE(record[2], 0u);
        }
        if (call.command == 3)
            memcpy(enabled.data(), record, 12);
    }
    QCOMPARE(enabled, registered);
    QCOMPARE(enabled.mid(0, 2), (QVector<std::uint32_t>{129, 130}));
    QVERIFY(enabled.at(2) >= 10000 && enabled.at(2) <= 10199);
}

void TestEventThread::startReturnsMinusOneWhenAnEventCannotBeRegistered()
{
    EventThread thread;
    kelvosim::clearLog();
    kelvosim::failCall("vx_Event", 2, 17, "no event", 1);
    QCOMPARE(thread.start(0, {129, 130}), -1);
    QVERIFY(!thread.isRunning());
    QCOMPARE(testcamera::calls(), (QStringList{"vx_Event 1", "vx_Event 1"}));
}

void TestEventThread::startReturnsTheStatusWhenEnablingFails()
{
    EventThread thread;
    kelvosim::failCall("vx_Event", 1, 17, "no event", 3);
    QCOMPARE(thread.start(0, {129, 130}), 17);
    QVERIFY(!thread.isRunning());
}

void TestEventThread::eachSignalledEventIsEmitted()
{
    EventThread thread;
    Receiver receiver(&thread);
    thread.start(0, {129, 130});
    kelvosim::signalDeviceEvent(130);
    QTRY_COMPARE(receiver.events, QVector<int>{130});
    kelvosim::signalDeviceEvent(129);
    QTRY_COMPARE(receiver.events, (QVector<int>{130, 129}));
}

void TestEventThread::aFailingWaitEmitsNothingAndWaitsAgain()
{
    kelvosim::failCall("vx_Event", 1, 5, "no wait", 7);
    EventThread thread;
    Receiver receiver(&thread);
    thread.start(0, {130});
    kelvosim::signalDeviceEvent(130);
    QTRY_COMPARE(receiver.events, QVector<int>{130});
}

void TestEventThread::waitsThatFailForEverDoNotKeepTheProcessorBusy()
{
    kelvosim::failCall("vx_Event", kelvosim::EveryCall, 5, "unplugged", 7);
    QElapsedTimer timer;
    timer.start();
    EventThread thread;
    thread.start(0, {130});
    QTRY_VERIFY(kelvosim::callCount("vx_Event", 7) > 20);
    // A thread that does not pause makes tens of thousands of calls meanwhile.
    const int waits = kelvosim::callCount("vx_Event", 7);
    QVERIFY(waits <= 2 + timer.elapsed() / 10);
    kelvosim::clearFaults();
    Receiver receiver(&thread);
    kelvosim::signalDeviceEvent(130);
    QTRY_COMPARE(receiver.events, QVector<int>{130});
}

/// A library whose waits return at once, for ever.
void TestEventThread::eventsWithoutEndNeitherPileUpNorStopTheReceiver()
{
    kelvosim::setLogging(false);
    kelvosim::failCall("vx_Event", kelvosim::EveryCall, 5, "no wait", 7);
    kelvosim::overrideResult("vx_Event", 0, 7);
    kelvosim::overrideNumber("vx_Event", 0, 129, 7);
    EventThread thread;
    std::atomic<int> emitted{0};
    int received = 0;
    connect(
        &thread, &EventThread::eventhappen, &thread, [&] { ++emitted; }, Qt::DirectConnection);
    connect(&thread, &EventThread::eventhappen, this, [&](int event) {
        ++received;
        thread.delivered(event);
    });
    thread.start(0, {129});
    while (emitted < 100)
        QThread::yieldCurrentThread(); // nothing is received meanwhile
    QCOMPARE(emitted.load(), 100);
    QTRY_VERIFY(received >= 10000);
    // The queue empties again and again, so that timers have their turn.
    bool timedOut = false;
    QTimer::singleShot(0, this, [&] { timedOut = true; });
    QTRY_VERIFY(timedOut);
    QVERIFY(emitted - received <= 100);
    thread.stop();
    QVERIFY(thread.wait(5000));
}

void TestEventThread::stopOnAThreadThatWasNeverStartedDoesNothing()
{
    EventThread thread;
    kelvosim::clearLog();
    thread.stop();
    QVERIFY(testcamera::calls().isEmpty());
}

void TestEventThread::stopEndsTheWaitAndDisablesTheEvents()
{
    EventThread thread;
    thread.start(0, {129, 130});
    QTRY_COMPARE(kelvosim::waitingThreads(), 1);
    kelvosim::clearLog();
    thread.stop();
    QVERIFY(thread.wait(5000));
    QCOMPARE(testcamera::calls(), QStringList{"vx_Event 5"});
    QCOMPARE(kelvosim::name(kelvosim::log().back()), std::string("vx_Event 2"));
    QCOMPARE(kelvosim::enabledEvents(), 0);
}

void TestEventThread::destructionEndsTheThread()
{
    {
        EventThread thread;
        thread.start(0, {130});
    }
    QCOMPARE(kelvosim::waitingThreads(), 0);
    QCOMPARE(kelvosim::enabledEvents(), 0);
}

void TestEventThread::aSecondStartReplacesTheList()
{
    EventThread thread;
    Receiver receiver(&thread);
    thread.start(0, {129});
    QTRY_COMPARE(kelvosim::waitingThreads(), 1);
    thread.start(0, {130});
    kelvosim::signalDeviceEvent(129);
    kelvosim::signalDeviceEvent(130);
    QTRY_COMPARE(receiver.events, QVector<int>{130});
}

void TestEventThread::theThreadRunsAtTheHighestPriority()
{
    EventThread thread;
    thread.start(0, {130});
    QTRY_COMPARE(kelvosim::waitingThreads(), 1);
    QCOMPARE(thread.priority(), QThread::TimeCriticalPriority);
}

void TestEventThread::aSignalledWakeCodeIsEmittedLikeAnyOther()
{
    EventThread thread;
    const std::uint32_t wakeCode = codeOf(thread);
    Receiver receiver(&thread);
    thread.start(0, {130});
    kelvosim::signalDeviceEvent(wakeCode);
    QTRY_COMPARE(receiver.events, QVector<int>{int(wakeCode)});
    kelvosim::signalDeviceEvent(130);
    QTRY_COMPARE(receiver.events, (QVector<int>{int(wakeCode), 130}));
}

void TestEventThread::withoutHoldingBackEveryWaitIsEmitted_data()
{
    QTest::addColumn<int>("code");
    QTest::newRow("frame") << 2;
    QTest::newRow("code 0") << 0; // the value that stands for no held-back event
}

void TestEventThread::withoutHoldingBackEveryWaitIsEmitted()
{
    QFETCH(int, code);
    EventThread thread;
    Receiver receiver(&thread);
    thread.start(0, {std::uint32_t(code)});
    for (int i = 1; i <= 20; ++i) {
        kelvosim::signalDeviceEvent(std::uint32_t(code));
        QTRY_COMPARE(receiver.events.count(), i);
    }
}

void TestEventThread::atMostOneHeldBackEventIsOnItsWay()
{
    EventThread thread;
    thread.holdBack(2);
    Receiver receiver(&thread);
    thread.start(0, {2, 8});
    kelvosim::signalDeviceEvent(2);
    QTRY_COMPARE(receiver.events, QVector<int>{2});
    // That one is on its way; ten more count as one further event.
    for (int i = 1; i <= 10; ++i) {
        kelvosim::signalDeviceEvent(2);
        kelvosim::signalDeviceEvent(8); // emitted at once, so the waits before it have returned
        QTRY_COMPARE(receiver.events.count(8), i);
    }
    QCOMPARE(receiver.events.count(2), 1);
    thread.delivered(2);
    QTRY_COMPARE(receiver.events.count(2), 2);
    thread.delivered(2);
    QCoreApplication::processEvents();
    QCOMPARE(receiver.events.count(2), 2);
    kelvosim::signalDeviceEvent(2);
    QTRY_COMPARE(receiver.events.count(2), 3);
}

/// A library whose waits return at once with the same event, for ever.
void TestEventThread::repetitionsOfAHeldBackEventDoNotKeepTheProcessorBusy()
{
    kelvosim::failCall("vx_Event", kelvosim::EveryCall, 5, "no wait", 7);
    kelvosim::overrideResult("vx_Event", 0, 7);
    kelvosim::overrideNumber("vx_Event", 0, 2, 7);
    EventThread thread;
    thread.holdBack(2);
    Receiver receiver(&thread);
    QElapsedTimer timer;
    timer.start();
    thread.start(0, {2});
    QTRY_VERIFY(kelvosim::callCount("vx_Event", 7) > 100);
    // A thread that does not pause makes tens of thousands of calls meanwhile.
    const int waits = kelvosim::callCount("vx_Event", 7);
    QVERIFY(waits <= 3 + timer.elapsed());
    QCOMPARE(receiver.events, QVector<int>{2});
    kelvosim::clearFaults();
}

void TestEventThread::otherEventsPassAHeldBackOne()
{
    EventThread thread;
    thread.holdBack(2);
    Receiver receiver(&thread);
    thread.start(0, {2, 128});
    kelvosim::signalDeviceEvent(2);
    QTRY_COMPARE(receiver.events, QVector<int>{2});
    kelvosim::signalDeviceEvent(2);
    kelvosim::signalDeviceEvent(128);
    QTRY_COMPARE(receiver.events, (QVector<int>{2, 128}));
}

QTEST_GUILESS_MAIN(TestEventThread)
#include "tst_eventthread.moc"
