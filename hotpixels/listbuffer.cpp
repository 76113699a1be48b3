// SPDX-License-Identifier: MIT
// Packs and unpacks the camera library's hot pixel lists.
#include "listbuffer.h"

#include <algorithm>

std::uint32_t bytesIn(const ListBuffer &buffer)
{
    return static_cast<std::uint32_t>(buffer.size() * sizeof(ListBuffer::value_type));
}

ListBuffer bufferFrom(const std::vector<Badpixel> &entries)
{
    ListBuffer buffer;
    buffer.reserve(2 * entries.size() + 1);
    buffer.push_back(static_cast<std::uint16_t>(entries.size()));
    for (const Badpixel &entry : entries) {
        buffer.push_back(entry.x);
        buffer.push_back(entry.y);
    }
    return buffer;
}

std::vector<Badpixel> entriesFrom(const ListBuffer &buffer, Pixelclass kind)
{
    const std::size_t count = std::min<std::size_t>(buffer[0], (buffer.size() - 1) / 2);
    std::vector<Badpixel> entries;
    entries.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        entries.push_back({buffer[2 * i + 1], buffer[2 * i + 2], kind});
    }
    return entries;
}
