// SPDX-License-Identifier: MIT
// Ends a test program that hangs, and says where.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

/// Watches from a thread of its own, because a hang may never come back to the event loop.
class Watchdog final
{
public:
    explicit Watchdog(std::chrono::seconds longestQuiet)
        : limit(longestQuiet)
        , thread([this] { watch(); })
    {
    }
    ~Watchdog()
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            over = true;
        }
        changed.notify_all();
        thread.join();
    }
    Watchdog(const Watchdog &) = delete;
    Watchdog &operator=(const Watchdog &) = delete;

    /// The program goes on. From now on it has the whole time again for `what`.
    void hear(const std::string &what)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        doing = what;
        ++signs;
        changed.notify_all();
    }

private:
    void watch()
    {
        std::unique_lock<std::mutex> lock(mutex);
        while (!over) {
            const unsigned before = signs;
            if (!changed.wait_for(lock, limit, [&] { return over || signs != before; })) {
                std::fprintf(stderr, "Hangs for %d s in: %s\n", static_cast<int>(limit.count()),
                             doing.c_str());
                std::abort();
            }
        }
    }

    const std::chrono::seconds limit;
    std::mutex mutex; // guards all below
    std::condition_variable changed;
    std::string doing = "start";
    unsigned signs = 0;
    bool over = false;
    std::thread thread;
};
