// SPDX-License-Identifier: MIT
// Overwriting what calls have written and what they return.

#include "lies.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace kelvosim {

namespace {

/// Cut to what the output can hold; 0 for what is no number.
template<class Number>
Number converted(double value)
{
    if constexpr (std::is_same_v<Number, double>) {
        return value;
    } else {
        constexpr double lowest = std::numeric_limits<Number>::min();
        constexpr double highest = std::numeric_limits<Number>::max();
        return std::isnan(value) ? Number(0) : static_cast<Number>(std::clamp(value, lowest, highest));
    }
}

} // namespace

void Lies::overrideResult(const std::string &function, std::int64_t command, std::int32_t result)
{
    const std::lock_guard<std::mutex> lock(mutex);
    results.push_back({function, command, 0, result});
}

void Lies::overrideNumber(const std::string &function, std::int64_t command, int index, double value)
{
    const std::lock_guard<std::mutex> lock(mutex);
    numbers.push_back({function, command, index, value});
}

void Lies::overridePointer(const std::string &function, std::int64_t command, char *pointer)
{
    const std::lock_guard<std::mutex> lock(mutex);
    pointers.push_back({function, command, 0, pointer});
}

void Lies::overrideData(const std::string &function, std::int64_t command,
                        const std::vector<std::uint8_t> &bytes)
{
    const std::lock_guard<std::mutex> lock(mutex);
    records.push_back({function, command, 0, bytes});
}

void Lies::tellTheTruth()
{
    const std::lock_guard<std::mutex> lock(mutex);
    results.clear();
    numbers.clear();
    pointers.clear();
    records.clear();
}

std::optional<std::int32_t> Lies::result(const Call &call) const
{
    return find(results, call);
}

void Lies::write(const Call &call, int index, const NumberOutput &output) const
{
    const std::optional<double> value = find(numbers, call, index);
    if (!value)
        return;
    std::visit(
        [&](auto *number) {
            if (number)
                *number = converted<std::remove_pointer_t<decltype(number)>>(*value);
        },
        output);
}

void Lies::write(const Call &call, char **output) const
{
    const std::optional<char *> pointer = find(pointers, call);
    if (pointer && output)
        *output = *pointer;
}

void Lies::write(const Call &call, void *output, std::size_t size) const
{
    const auto bytes = find(records, call);
    if (bytes && output)
        std::memcpy(output, bytes->data(), std::min(size, bytes->size()));
}

template<class Value>
std::optional<Value> Lies::find(const Rules<Value> &rules, const Call &call, int index) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto rule = std::find_if(rules.rbegin(), rules.rend(), [&](const Rule<Value> &r) {
        return r.function == call.function && r.index == index &&
               (r.command == AnyCommand || r.command == call.command);
    });
    return rule == rules.rend() ? std::nullopt : std::optional<Value>(rule->value);
}

} // namespace kelvosim
