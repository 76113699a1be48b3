// SPDX-License-Identifier: MIT
// Faults, delays and blocks that a test has asked for.
#pragma once

#include "condition.h"
#include "kelvosim.h"

#include <mutex>
#include <optional>

namespace kelvosim {

class Faults
{
public:
    struct Fault
    {
        std::int32_t status = 0;
        std::string text;
    };

    void failCall(const std::string &function, std::int64_t command, int nth, const Fault &fault);
    void failNthCall(std::uint64_t n, bool andAllAfter, const Fault &fault);

    /// The same, counting the calls of one thread, CallLog::thisThread(), alone.
    void failNthCallOf(std::uint64_t thread, std::uint64_t n, bool andAllAfter, const Fault &fault);
    void delayCall(const std::string &function, std::int64_t command, int milliseconds);
    void blockCall(const std::string &function, std::int64_t command);
    void releaseCalls();
    void clear();

    /// A call begins: counts it, holds it up as long as asked for (the thread may be cancelled meanwhile)
    /// and tells how it shall fail, if at all.
    std::optional<Fault> meet(const std::string &function, std::int64_t command);

    int blockedCount() const;

    /// Number of calls that faults made fail since the last clear().
    std::uint64_t failedCount() const;

private:
    /// Which calls are meant: of a function, or of one command of it.
    struct Target
    {
        std::string function;
        std::int64_t command = AnyCommand;

        bool fits(const std::string &calledFunction, std::int64_t calledCommand) const;
    };
    struct FailRule
    {
        Target target;
        int nth = EveryCall;
        Fault fault;
    };
    struct DelayRule
    {
        Target target;
        int milliseconds = 0;
    };

    std::optional<Fault> count(const std::string &function, std::int64_t command);
    std::optional<Fault> countAny(const std::string &function);
    void delay(std::unique_lock<std::mutex> &lock, const std::string &function, std::int64_t command);
    void block(std::unique_lock<std::mutex> &lock, const std::string &function, std::int64_t command);
    bool isBlocked(const std::string &function, std::int64_t command) const;

    mutable std::mutex mutex; ///< guards all below
    Condition changed;
    std::vector<FailRule> failing;
    std::vector<DelayRule> delays;
    std::vector<Target> blocks;
    std::uint64_t callsToFailure = 0; ///< 0: no failure by number
    bool failAllAfter = false;
    bool isFailingAll = false;       ///< the failure by number was reached, and all after it fail
    std::uint64_t countedThread = 0; ///< whose calls count for the failure by number; 0: everybody's
    std::uint64_t failed = 0;
    Fault numberedFault;
    std::uint64_t clearings = 0; ///< a delay ends early when this has changed
    int blocked = 0;
};

} // namespace kelvosim
