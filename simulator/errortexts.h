// SPDX-License-Identifier: MIT
// What vx_GetError tells: the last failure of each handle.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace kelvosim {

class ErrorTexts
{
public:
    void open(std::uint32_t handle);
    void close(std::uint32_t handle);
    void clear();

    /// Notes a failing call. An empty text makes tell() fail until the next failing call that has one.
    /// The failure of a handle that is not open counts as one of handle 0.
    void note(std::uint32_t handle, std::int32_t status, const std::string &text);

    /// The last failure of an open handle, or the very last of all for any other.
    /// @param text lives as long as the process
    /// @return false when there is no text
    bool tell(std::uint32_t handle, std::int32_t *status, const char **text) const;

    void setSilent(bool silent);

private:
    struct Entry
    {
        std::int32_t status = 0;
        const char *text = nullptr;
    };

    mutable std::mutex mutex;    ///< guards all below
    std::set<std::string> texts; ///< never shrinks, so that a text once told stays readable
    std::map<std::uint32_t, Entry> entries;
    Entry last;
    bool isSilent = false;
};

} // namespace kelvosim
