// SPDX-License-Identifier: MIT
// Keeping the last failures.

#include "errortexts.h"

namespace kelvosim {

void ErrorTexts::open(std::uint32_t handle)
{
    const std::lock_guard<std::mutex> lock(mutex);
    entries[handle].text = texts.insert("No error.").first->c_str();
}

void ErrorTexts::close(std::uint32_t handle)
{
    const std::lock_guard<std::mutex> lock(mutex);
    entries.erase(handle);
}

void ErrorTexts::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    entries.clear();
    last = Entry();
    isSilent = false;
}

void ErrorTexts::note(std::uint32_t handle, std::int32_t status, const std::string &text)
{
    const std::lock_guard<std::mutex> lock(mutex);
    last.status = status;
    last.text = text.empty() ? nullptr : texts.insert(text).first->c_str();
    const auto own = entries.find(handle);
    if (own != entries.end())
        own->second = last;
}

bool ErrorTexts::tell(std::uint32_t handle, std::int32_t *status, const char **text) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto own = entries.find(handle);
    const Entry &entry = own == entries.end() ? last : own->second;
    if (isSilent || !entry.text)
        return false;
    *status = entry.status;
    *text = entry.text;
    return true;
}

void ErrorTexts::setSilent(bool silent)
{
    const std::lock_guard<std::mutex> lock(mutex);
    isSilent = silent;
}

} // namespace kelvosim
