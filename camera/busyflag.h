// SPDX-License-Identifier: MIT
// The guard of the flags that break loops of signals and slots.
#pragma once

/// Sets a flag for its own life and puts back what it was, also when a receiver throws.
class FlagSetter final
{
public:
    explicit FlagSetter(bool &target, bool during = true)
        : flag(target)
        , before(target)
    {
        flag = during;
    }
    ~FlagSetter() { flag = before; }
    FlagSetter(const FlagSetter &) = delete;
    FlagSetter &operator=(const FlagSetter &) = delete;

private:
    bool &flag;
    const bool before;
};
