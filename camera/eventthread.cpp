// SPDX-License-Identifier: MIT
// The wait loop, its start and end, and the rule that frame events never pile up.

#include "eventthread.h"

#include "eventidpool.h"

namespace {

// A library that has no camera any more may fail every wait at once.
constexpr unsigned long PauseAfterFailure = 10; // milliseconds

// A library that signals without end must not fill the memory, nor keep the receiver from all else.
constexpr int MostUndelivered = 100;
constexpr unsigned long PauseForReceiver = 1; // milliseconds

} // namespace

EventThread::EventThread(QObject *parent)
    : QThread(parent)
    , wakeCode(EventIdPool::take())
{
    landing.setSingleShot(true);
    landing.setInterval(0);
    connect(&landing, &QTimer::timeout, this, &EventThread::land);
}

EventThread::~EventThread()
{
    stop();
    wait();
    EventIdPool::giveBack(wakeCode);
}

kelvo::Status EventThread::start(kelvo::Handle camera, const QVector<std::uint32_t> &codes)
{
    stop();
    wait();
    handle = camera;
    events = codes;
    events.append(wakeCode);
    const kelvo::Status status = registerEvents();
    if (status != kelvo::Success)
        return status;
    running = true;
    QThread::start(QThread::TimeCriticalPriority);
    return kelvo::Success;
}

kelvo::Status EventThread::registerEvents()
{
    for (const std::uint32_t code : events) {
        kelvo::EventInitRecord record;
        record.code = code;
        if (vx_Event(handle, kelvo::EventRegister, &record, sizeof record) != kelvo::Success)
            return -1;
    }
    return vx_Event(handle, kelvo::EventEnable, events.data(), events.size() * sizeof(std::uint32_t));
}

void EventThread::stop()
{
    if (running.exchange(false))
        vx_Event(handle, kelvo::EventSignal, &wakeCode, sizeof wakeCode);
}

void EventThread::run()
{
    setTerminationEnabled(false);
    kelvo::EventWaitRecord record;
    record.codes = events.data();
    record.count = static_cast<std::uint32_t>(events.size());
    while (running) {
        const kelvo::Status status = callLibrary(kelvo::EventWait, &record, sizeof record);
        if (status != kelvo::Success)
            msleep(PauseAfterFailure);
        else if (running && mayTakeOff(record.signalled))
            takeOff(record.signalled);
        else if (running)
            msleep(PauseForReceiver); // it counts as one that waits already, as may many more
        letReceiverCatchUp();
    }
    running = false;
    callLibrary(kelvo::EventDisable, events.data(), events.size() * sizeof(std::uint32_t));
}

/// Inside of the library, and nowhere else, this thread may be ended by force. Elsewhere that would leave
/// Qt's locks locked or, where Qt cleans up behind a thread that ends by itself just then, end the program.
kelvo::Status EventThread::callLibrary(kelvo::EventCommand command, void *data, std::size_t size)
{
    setTerminationEnabled(true);
    const kelvo::Status status = vx_Event(handle, command, data, static_cast<std::uint32_t>(size));
    setTerminationEnabled(false);
    return status;
}

/// After many undelivered events waits for the delivery of all, so that the receiver's event loop gets
/// to what else is in its queue.
void EventThread::letReceiverCatchUp()
{
    if (undelivered < MostUndelivered)
        return;
    while (running && undelivered > 0)
        msleep(PauseForReceiver);
}

void EventThread::holdBack(std::uint32_t event)
{
    heldBackEvent = event;
}

/// Counts a signalled event in. @return whether it is to be emitted now
bool EventThread::mayTakeOff(std::uint32_t event)
{
    if (heldBackEvent == 0 || event != heldBackEvent)
        return true;
    int before = flight;
    while (!flight.compare_exchange_weak(before, before == Landed ? InFlight : InFlightAndOneMore)) {
    }
    return before == Landed;
}

void EventThread::takeOff(std::uint32_t event)
{
    ++undelivered;
    emit eventhappen(static_cast<int>(event));
}

void EventThread::delivered(int event)
{
    --undelivered;
    if (heldBackEvent != 0 && static_cast<std::uint32_t>(event) == heldBackEvent)
        landing.start();
}

/// Runs when no posted event is left, so what it emits directly cannot overtake what is in the queue.
void EventThread::land()
{
    int before = flight;
    while (!flight.compare_exchange_weak(before, before == InFlightAndOneMore ? InFlight : Landed)) {
    }
    if (before == InFlightAndOneMore)
        takeOff(heldBackEvent);
}

int EventThread::abandon()
{
    int oneMore = InFlightAndOneMore;
    flight.compare_exchange_strong(oneMore, InFlight);
    return undelivered;
}
