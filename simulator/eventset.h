// SPDX-License-Identifier: MIT
// The events of one camera handle, or of handle 0.
#pragma once

#include "condition.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

namespace kelvosim {

/// Events are sticky and reset themselves: a signal stays until one wait returns it, and several signals
/// before that count as one. Every function may be called from any thread; a waiting thread may be cancelled.
class EventSet
{
public:
    static constexpr std::uint32_t Forever = 0xFFFFFFFF;

    struct Wait
    {
        std::vector<std::uint32_t> codes;
        bool forAll = false;
        std::uint32_t milliseconds = Forever;
    };

    /// Registers the event once more: it is known until every registration was taken back.
    void add(std::uint32_t code);

    /// @throws Failure when one of the codes was never registered; then none of them is enabled
    void enable(const std::vector<std::uint32_t> &codes);

    /// Takes one registration of each event back, so that one listener's end leaves the others their events.
    /// With the last one the event is disabled and forgotten, and waits on it end with a failure.
    /// @throws Failure when one of the codes is unknown; the others are taken back all the same
    void disable(const std::vector<std::uint32_t> &codes);

    /// @throws Failure when the event is not enabled
    void signal(std::uint32_t code);

    /// Signals on the camera's behalf: nothing happens when nobody has enabled the event.
    void raise(std::uint32_t code);

    /// Whether the event is signalled and no wait has returned it yet.
    bool isPending(std::uint32_t code) const;

    /// Blocks until one of the codes (or all of them) is signalled, and takes what it returns.
    /// @return the first signalled code in the order of the array
    /// @throws Failure when the time has passed, the codes are not enabled, or the handle is closed
    std::uint32_t wait(const Wait &wanted);

    /// Ends all waits for good.
    void close();

    /// Forgets what was signalled, and all events too unless somebody waits for them.
    void reset();

    int enabledCount() const;
    int waitingCount() const;

private:
    struct Event
    {
        int registrations = 0;
        bool enabled = false;
        bool pending = false;
    };

    bool takeBack(std::uint32_t code);
    Event *enabledEvent(std::uint32_t code);
    bool isMet(const Wait &wanted);
    std::uint32_t take(const Wait &wanted);

    mutable std::mutex mutex; ///< guards all below
    Condition changed;
    std::map<std::uint32_t, Event> events;
    int waiting = 0;
    bool closed = false;
};

} // namespace kelvosim
