// SPDX-License-Identifier: MIT
// Two hundred wake-up codes, last in, first out.

#include "eventidpool.h"

#include <QMutex>
#include <QMutexLocker>

#include <deque>
#include <numeric>
#include <stdexcept>

namespace {

constexpr std::uint32_t FirstCode = 10000;
constexpr std::size_t CodeCount = 200;

std::deque<std::uint32_t> allCodes()
{
    std::deque<std::uint32_t> all(CodeCount);
    std::iota(all.begin(), all.end(), FirstCode);
    return all;
}

QMutex mutex; // guards codes
std::deque<std::uint32_t> codes = allCodes();

} // namespace

std::uint32_t EventIdPool::take()
{
    // The test needs no lock: codes are taken on one thread alone, so none can vanish after it.
    if (codes.empty())
        throw std::runtime_error("Too many events :D");
    const QMutexLocker lock(&mutex);
    const std::uint32_t code = codes.back();
    codes.pop_back();
    return code;
}

void EventIdPool::giveBack(std::uint32_t code)
{
    const QMutexLocker lock(&mutex);
    codes.push_back(code);
}
