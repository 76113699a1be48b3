// SPDX-License-Identifier: MIT
// Counts the threads inside a scope; a cancelled thread too leaves through the destructor.
#pragma once

namespace kelvosim {

class Counted
{
public:
    explicit Counted(int &counter)
        : count(counter)
    {
        ++count;
    }
    ~Counted() { --count; }
    Counted(const Counted &) = delete;
    Counted &operator=(const Counted &) = delete;

private:
    int &count;
};

} // namespace kelvosim
