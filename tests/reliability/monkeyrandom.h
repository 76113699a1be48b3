// SPDX-License-Identifier: MIT
// Random numbers that depend on a seed and on the number of the action alone.
#pragma once

#include <QtGlobal>

#include <initializer_list>
#include <random>

/// The choices of one action. Each action draws from a generator of its own, so that an action that drew more
/// or fewer numbers than in another run does not shift the ones after it.
class MonkeyRandom final
{
public:
    MonkeyRandom(quint64 seed, quint64 number)
        : engine(mixed(mixed(seed) + number))
    {
    }

    /// Makes one seed out of two numbers.
    static quint64 mixed(quint64 value)
    {
        value += 0x9E3779B97F4A7C15u;
        value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
        value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
        return value ^ (value >> 31);
    }

    /// 0 to count - 1; 0 where there is nothing to choose. Made here, because the standard library's
    /// distributions differ from one system to the next.
    int below(int count) { return count < 1 ? 0 : static_cast<int>(engine() % static_cast<quint64>(count)); }

    int from(int first, int last) { return first + below(last - first + 1); }
    bool oneIn(int count) { return below(count) == 0; }
    quint64 number() { return engine(); }

    template<typename List>
    const auto &pick(const List &list)
    {
        return *(list.begin() + below(static_cast<int>(list.size())));
    }

    template<typename Value>
    Value pick(std::initializer_list<Value> list)
    {
        return *(list.begin() + below(static_cast<int>(list.size())));
    }

private:
    std::mt19937_64 engine;
};
