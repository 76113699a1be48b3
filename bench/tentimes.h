// SPDX-License-Identifier: MIT
// What ten times as many entries cost.
#pragma once

#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <limits>

/// Seconds that the calling thread has worked for: the turns of other programs do not count.
inline double threadSeconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template<typename Work>
double secondsOf(Work &&work)
{
    const double start = threadSeconds();
    work();
    return threadSeconds() - start;
}

/// Asks `secondsFor(entries)` for `few` entries and for ten times as many, in turn; below 0 says that the
/// work went wrong. The columns are the shortest times of the iterations, and what they are to each other.
template<typename Measure>
void tenTimes(benchmark::State &state, int few, Measure &&secondsFor)
{
    double shorter = std::numeric_limits<double>::max();
    double longer = shorter;
    for (auto _ : state) {
        const double one = secondsFor(few);
        const double ten = secondsFor(10 * few);
        if (one < 0.0 || ten < 0.0) {
            state.SkipWithError("the work was not done");
            break;
        }
        shorter = std::min(shorter, one);
        longer = std::min(longer, ten);
        state.SetIterationTime(ten);
    }
    state.counters["few_ms"] = shorter * 1e3;
    state.counters["tenfold_ms"] = longer * 1e3;
    state.counters["tenfold/few"] = longer / shorter;
}
