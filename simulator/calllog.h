// SPDX-License-Identifier: MIT
// The log of all calls that a test reads.
#pragma once

#include "kelvosim.h"

#include <mutex>

namespace kelvosim {

class CallLog
{
public:
    /// Names a logged call until its result is known.
    struct Ticket
    {
        std::uint64_t generation = 0;
        std::size_t index = 0;
    };

    static std::uint64_t thisThread();

    bool isOn() const;
    void switchTo(bool on);
    Ticket begin(Call call);

    /// Does nothing when the log was cleared meanwhile.
    void end(const Ticket &ticket, std::int32_t result);

    std::vector<Call> calls() const;
    int count(const std::string &function, std::int64_t command) const;
    void clear();

private:
    mutable std::mutex mutex; ///< guards all below
    std::vector<Call> entries;
    std::uint64_t generation = 1;
    bool on = false; ///< off in normal runs, where nobody would read it and it would grow without end
};

} // namespace kelvosim
