// SPDX-License-Identifier: MIT
// Registering, signalling and awaiting events.

#include "eventset.h"

#include "counted.h"
#include "failure.h"

#include <algorithm>

namespace kelvosim {

namespace {

Failure unknownEvent()
{
    return Failure(UnknownEvent, "The event is not enabled.");
}

} // namespace

void EventSet::add(std::uint32_t code)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ++events[code].registrations;
}

void EventSet::enable(const std::vector<std::uint32_t> &codes)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto isKnown = [this](std::uint32_t code) { return events.count(code) != 0; };
    if (!std::all_of(codes.begin(), codes.end(), isKnown))
        throw Failure(UnknownEvent, "The event is not registered.");
    for (const std::uint32_t code : codes)
        events[code].enabled = true;
}

void EventSet::disable(const std::vector<std::uint32_t> &codes)
{
    const std::lock_guard<std::mutex> lock(mutex);
    bool known = true;
    for (const std::uint32_t code : codes)
        known = takeBack(code) && known;
    changed.notifyAll();
    if (!known)
        throw unknownEvent();
}

void EventSet::signal(std::uint32_t code)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Event *const event = enabledEvent(code);
    if (!event)
        throw unknownEvent();
    event->pending = true;
    changed.notifyAll();
}

void EventSet::raise(std::uint32_t code)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (Event *const event = enabledEvent(code)) {
        event->pending = true;
        changed.notifyAll();
    }
}

bool EventSet::isPending(std::uint32_t code) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto event = events.find(code);
    return event != events.end() && event->second.pending;
}

std::uint32_t EventSet::wait(const Wait &wanted)
{
    if (wanted.codes.empty())
        throw Failure(InvalidParameter, "There is nothing to wait for.");
    const auto end = Condition::Clock::now() + std::chrono::milliseconds(wanted.milliseconds);
    std::unique_lock<std::mutex> lock(mutex);
    const Counted counted(waiting);
    while (!isMet(wanted)) {
        if (wanted.milliseconds == Forever)
            changed.wait(lock);
        else if (!changed.waitUntil(lock, end) && !isMet(wanted))
            throw Failure(TimedOut, "No event was signalled in time.");
    }
    return take(wanted);
}

void EventSet::close()
{
    const std::lock_guard<std::mutex> lock(mutex);
    closed = true;
    events.clear();
    changed.notifyAll();
}

void EventSet::reset()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (waiting == 0)
        events.clear();
    for (auto &event : events)
        event.second.pending = false;
}

int EventSet::enabledCount() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return static_cast<int>(
        std::count_if(events.begin(), events.end(), [](const auto &event) { return event.second.enabled; }));
}

int EventSet::waitingCount() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return waiting;
}

/// @return false when the event is not registered
bool EventSet::takeBack(std::uint32_t code)
{
    const auto event = events.find(code);
    if (event == events.end())
        return false;
    if (--event->second.registrations == 0)
        events.erase(event);
    return true;
}

EventSet::Event *EventSet::enabledEvent(std::uint32_t code)
{
    const auto event = events.find(code);
    return event != events.end() && event->second.enabled ? &event->second : nullptr;
}

bool EventSet::isMet(const Wait &wanted)
{
    if (closed)
        throw Failure(InvalidHandle, "The camera was closed.");
    std::size_t pending = 0;
    for (const std::uint32_t code : wanted.codes) {
        const Event *const event = enabledEvent(code);
        if (!event)
            throw unknownEvent();
        pending += event->pending ? 1 : 0;
    }
    return wanted.forAll ? pending == wanted.codes.size() : pending > 0;
}

std::uint32_t EventSet::take(const Wait &wanted)
{
    std::uint32_t first = 0;
    bool found = false;
    for (const std::uint32_t code : wanted.codes) {
        Event &event = events[code];
        if (!event.pending || (found && !wanted.forAll))
            continue;
        event.pending = false;
        first = found ? first : code;
        found = true;
    }
    return first;
}

} // namespace kelvosim
