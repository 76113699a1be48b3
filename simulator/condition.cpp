// SPDX-License-Identifier: MIT
// POSIX condition variable on the monotonic clock.

#include "condition.h"

#include <cerrno>
#include <ctime>

namespace kelvosim {

Condition::Condition()
{
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&condition, &attributes);
    pthread_condattr_destroy(&attributes);
}

Condition::~Condition()
{
    pthread_cond_destroy(&condition);
}

void Condition::wait(std::unique_lock<std::mutex> &lock)
{
    pthread_cond_wait(&condition, lock.mutex()->native_handle());
}

bool Condition::waitUntil(std::unique_lock<std::mutex> &lock, Clock::time_point end)
{
    using namespace std::chrono;
    const auto whole = time_point_cast<seconds>(end);
    timespec time{};
    time.tv_sec = static_cast<time_t>(whole.time_since_epoch().count());
    time.tv_nsec = static_cast<long>(duration_cast<nanoseconds>(end - whole).count());
    return pthread_cond_timedwait(&condition, lock.mutex()->native_handle(), &time) != ETIMEDOUT;
}

void Condition::notifyAll()
{
    pthread_cond_broadcast(&condition);
}

} // namespace kelvosim
