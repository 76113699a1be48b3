// SPDX-License-Identifier: MIT
// Counting calls, holding them up and letting them fail.

#include "faults.h"

#include "calllog.h"
#include "counted.h"

#include <algorithm>

namespace kelvosim {

bool Faults::Target::fits(const std::string &calledFunction, std::int64_t calledCommand) const
{
    return function == calledFunction && (command == AnyCommand || command == calledCommand);
}

void Faults::failCall(const std::string &function, std::int64_t command, int nth, const Fault &fault)
{
    const std::lock_guard<std::mutex> lock(mutex);
    failing.push_back({{function, command}, nth, fault});
}

void Faults::failNthCall(std::uint64_t n, bool andAllAfter, const Fault &fault)
{
    failNthCallOf(0, n, andAllAfter, fault);
}

void Faults::failNthCallOf(std::uint64_t thread, std::uint64_t n, bool andAllAfter, const Fault &fault)
{
    const std::lock_guard<std::mutex> lock(mutex);
    callsToFailure = n;
    failAllAfter = andAllAfter;
    isFailingAll = false;
    countedThread = thread;
    numberedFault = fault;
}

void Faults::delayCall(const std::string &function, std::int64_t command, int milliseconds)
{
    const std::lock_guard<std::mutex> lock(mutex);
    delays.push_back({{function, command}, milliseconds});
}

void Faults::blockCall(const std::string &function, std::int64_t command)
{
    const std::lock_guard<std::mutex> lock(mutex);
    blocks.push_back({function, command});
}

void Faults::releaseCalls()
{
    const std::lock_guard<std::mutex> lock(mutex);
    blocks.clear();
    changed.notifyAll();
}

void Faults::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    failing.clear();
    delays.clear();
    blocks.clear();
    callsToFailure = 0;
    isFailingAll = false;
    failed = 0;
    ++clearings;
    changed.notifyAll();
}

std::optional<Faults::Fault> Faults::meet(const std::string &function, std::int64_t command)
{
    std::unique_lock<std::mutex> lock(mutex);
    const std::optional<Fault> any = countAny(function);
    const std::optional<Fault> own = count(function, command);
    delay(lock, function, command);
    block(lock, function, command);
    failed += own || any ? 1 : 0;
    return own ? own : any;
}

std::uint64_t Faults::failedCount() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return failed;
}

int Faults::blockedCount() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return blocked;
}

/// Every fitting rule counts the call; the first one whose turn it is decides.
std::optional<Faults::Fault> Faults::count(const std::string &function, std::int64_t command)
{
    std::optional<Fault> found;
    for (auto rule = failing.begin(); rule != failing.end();) {
        const bool fits = rule->target.fits(function, command);
        const bool spent = fits && rule->nth != EveryCall && --rule->nth == 0;
        if (!found && (spent || (fits && rule->nth == EveryCall)))
            found = rule->fault;
        rule = spent ? failing.erase(rule) : rule + 1;
    }
    return found;
}

std::optional<Faults::Fault> Faults::countAny(const std::string &function)
{
    if (function == "vx_GetError" || function == "vx_ExitCamera")
        return std::nullopt;
    const bool counts = callsToFailure > 0 && (countedThread == 0 || countedThread == CallLog::thisThread());
    if (counts && --callsToFailure == 0) {
        isFailingAll = failAllAfter;
        return numberedFault;
    }
    return isFailingAll ? std::optional<Fault>(numberedFault) : std::nullopt;
}

void Faults::delay(std::unique_lock<std::mutex> &lock, const std::string &function, std::int64_t command)
{
    int milliseconds = 0;
    for (const DelayRule &rule : delays)
        milliseconds += rule.target.fits(function, command) ? rule.milliseconds : 0;
    const auto end = Condition::Clock::now() + std::chrono::milliseconds(milliseconds);
    const std::uint64_t before = clearings;
    while (milliseconds > 0 && before == clearings && Condition::Clock::now() < end)
        changed.waitUntil(lock, end);
}

void Faults::block(std::unique_lock<std::mutex> &lock, const std::string &function, std::int64_t command)
{
    if (!isBlocked(function, command))
        return;
    const Counted counted(blocked);
    while (isBlocked(function, command))
        changed.wait(lock);
}

bool Faults::isBlocked(const std::string &function, std::int64_t command) const
{
    return std::any_of(blocks.begin(), blocks.end(),
                       [&](const Target &target) { return target.fits(function, command); });
}

} // namespace kelvosim
