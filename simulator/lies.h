// SPDX-License-Identifier: MIT
// What calls answer instead of the truth.
#pragma once

#include "kelvosim.h"

#include <cstddef>
#include <mutex>
#include <variant>

namespace kelvosim {

/// A place into which a call writes one number.
using NumberOutput = std::variant<std::int32_t *, std::uint32_t *, double *>;

/// May be read and changed from any thread.
class Lies
{
public:
    void overrideResult(const std::string &function, std::int64_t command, std::int32_t result);
    void overrideNumber(const std::string &function, std::int64_t command, int index, double value);
    void overridePointer(const std::string &function, std::int64_t command, char *pointer);
    void overrideData(const std::string &function, std::int64_t command,
                      const std::vector<std::uint8_t> &bytes);
    void tellTheTruth();

    /// What the call is to return, if not the truth.
    std::optional<std::int32_t> result(const Call &call) const;

    // Overwrite what a call has written. Null outputs stay alone, as do bytes behind `size`.
    void write(const Call &call, int index, const NumberOutput &output) const;
    void write(const Call &call, char **output) const;
    void write(const Call &call, void *output, std::size_t size) const;

private:
    template<class Value>
    struct Rule
    {
        std::string function;
        std::int64_t command;
        int index;
        Value value;
    };
    template<class Value>
    using Rules = std::vector<Rule<Value>>;

    template<class Value>
    std::optional<Value> find(const Rules<Value> &rules, const Call &call, int index = 0) const;

    mutable std::mutex mutex; ///< guards all below; of two rules for the same output the later one counts
    Rules<std::int32_t> results;
    Rules<double> numbers;
    Rules<char *> pointers;
    Rules<std::vector<std::uint8_t>> records;
};

} // namespace kelvosim
