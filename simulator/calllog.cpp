// SPDX-License-Identifier: MIT
// Keeping the log of calls.

#include "calllog.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace kelvosim {

std::uint64_t CallLog::thisThread()
{
    static std::atomic<std::uint64_t> threads{0};
    thread_local std::uint64_t own = 0;
    if (own == 0)
        own = ++threads;
    return own;
}

bool CallLog::isOn() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return on;
}

void CallLog::switchTo(bool wanted)
{
    const std::lock_guard<std::mutex> lock(mutex);
    on = wanted;
}

CallLog::Ticket CallLog::begin(Call call)
{
    call.thread = thisThread();
    const std::lock_guard<std::mutex> lock(mutex);
    if (!on)
        return Ticket();
    entries.push_back(std::move(call));
    return {generation, entries.size() - 1};
}

void CallLog::end(const Ticket &ticket, std::int32_t result)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (ticket.generation != generation)
        return;
    entries[ticket.index].result = result;
    entries[ticket.index].returned = true;
}

std::vector<Call> CallLog::calls() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return entries;
}

int CallLog::count(const std::string &function, std::int64_t command) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return static_cast<int>(std::count_if(entries.begin(), entries.end(), [&](const Call &call) {
        return call.function == function && (command == AnyCommand || call.command == command);
    }));
}

void CallLog::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    entries.clear();
    ++generation;
}

} // namespace kelvosim
