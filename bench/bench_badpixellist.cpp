// SPDX-License-Identifier: MIT
// Adding to and looking up in a long hot pixel list, beside a plain list that is walked from its start.
#include "badpixellistmodel.h"

#include <QPoint>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace {

constexpr int steps = 500; // additions to the long list that are timed; the walks set the limit

// Places across a sensor, different for the first ten million.
QPoint place(int i)
{
    return QPoint(i % 4001, i % 3001);
}

// A list of entries and nothing else: unlike the model it tells nobody of its changes.
class WalkedList final
{
public:
    bool add(const QPoint &at)
    {
        const auto isTaken = [&at](const Badpixel &entry) {
            return entry.x == at.x() && entry.y == at.y() && entry.pixelclass < Ignore;
        };
        if (std::any_of(entries.begin(), entries.end(), isTaken)) {
            return false;
        }
        entries.push_back({static_cast<std::uint16_t>(at.x()), static_cast<std::uint16_t>(at.y()), User});
        return true;
    }

    int find(const QPoint &at) const
    {
        const auto isThere = [&at](const Badpixel &entry) { return entry.x == at.x() && entry.y == at.y(); };
        return static_cast<int>(std::find_if(entries.begin(), entries.end(), isThere) - entries.begin());
    }

    // Without looking for doubles, which would take the time that the benchmark is to show.
    void fill(int count)
    {
        for (int i = 0; i < count; ++i) {
            const QPoint at = place(i);
            entries.push_back({static_cast<std::uint16_t>(at.x()), static_cast<std::uint16_t>(at.y()), User});
        }
    }

private:
    std::vector<Badpixel> entries;
};

class IndexedList final
{
public:
    bool add(const QPoint &at) { return model.addBadpixel(at); }
    int find(const QPoint &at) const { return model.findBadpixel(at.x(), at.y(), 1).row(); }

    void fill(int count)
    {
        for (int i = 0; i < count; ++i) {
            model.addBadpixel(place(i));
        }
    }

private:
    BadpixelListModel model;
};

// Seconds that it takes to append `steps` entries behind `count` and to find each; -1 when one got lost.
template<typename List>
double timeOf(int count)
{
    List list;
    list.fill(count);
    bool complete = true;
    const auto start = std::chrono::steady_clock::now();
    for (int i = count; i < count + steps; ++i) {
        const bool added = list.add(place(i));
        complete = complete && added && list.find(place(i)) == i;
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    return complete ? taken.count() : -1.0;
}

// The time column is the model's, for all steps together.
// The index's hash table doubles now and then, and does so between 10,000 and 10,500 entries: that growth is
// in the shorter list's time, which may therefore be the longer one.
void addAndFind(benchmark::State &state)
{
    const int count = static_cast<int>(state.range(0));
    double model = 0.0;
    double walk = 0.0;
    for (auto _ : state) {
        const double modelTime = timeOf<IndexedList>(count);
        const double walkTime = timeOf<WalkedList>(count);
        if (modelTime < 0.0 || walkTime < 0.0) {
            state.SkipWithError("an entry was not added or not found");
            break;
        }
        state.SetIterationTime(modelTime);
        model += modelTime;
        walk += walkTime;
    }
    const double stepsTaken = static_cast<double>(state.iterations()) * steps;
    state.counters["model_ns"] = model / stepsTaken * 1e9;
    state.counters["walk_ns"] = walk / stepsTaken * 1e9;
    state.counters["walk/model"] = walk / model;
}

} // namespace

BENCHMARK(addAndFind)
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
