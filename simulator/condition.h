// SPDX-License-Identifier: MIT
// A condition variable in whose waits a thread may be cancelled.
#pragma once

#include <pthread.h>

#include <chrono>
#include <mutex>

namespace kelvosim {

/// The standard's condition variable must not be cancelled: its waits are noexcept, so the unwinding of a
/// cancelled thread would end the process. Here the lock is given back and the thread ends quietly.
class Condition
{
public:
    using Clock = std::chrono::steady_clock;

    Condition();
    ~Condition();
    Condition(const Condition &) = delete;
    Condition &operator=(const Condition &) = delete;

    void wait(std::unique_lock<std::mutex> &lock);

    /// @return false when the time has come without a notification
    bool waitUntil(std::unique_lock<std::mutex> &lock, Clock::time_point end);

    void notifyAll();

private:
    pthread_cond_t condition;
};

} // namespace kelvosim
