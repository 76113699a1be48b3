// SPDX-License-Identifier: MIT
// Exchanges hot pixel lists with the camera's own memory.
#include "badpixelstorage.h"

#include "camera.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace {

// A list as the library exchanges it: the number of entries, then x and y of each.
using ListBuffer = std::vector<std::uint16_t>;

// Longer lists are taken for a misreading of the camera and skipped.
constexpr std::int32_t longestListRead = 1000;
// What the first word of a buffer can say.
constexpr std::size_t longestListWritten = std::numeric_limits<std::uint16_t>::max();

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

// The first word may promise more pairs than the buffer has room for: only those that are there count.
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

} // namespace

BadpixelStorage::BadpixelStorage(const Camera *camera)
{
    if (camera) {
        handle = camera->handle();
    }
}

void BadpixelStorage::readMaximumUserEntries(std::int32_t &count) const
{
    readCount(kelvo::HotpixelGetMaxUserListCount, count);
}

void BadpixelStorage::readFactoryCount(std::int32_t &count) const
{
    readCount(kelvo::HotpixelGetFactoryListCount, count);
}

std::vector<Badpixel> BadpixelStorage::factoryList(std::int32_t count) const
{
    return readList(kelvo::HotpixelGetFactoryList, count, Factory);
}

std::vector<Badpixel> BadpixelStorage::userList() const
{
    std::int32_t count = 0;
    readCount(kelvo::HotpixelGetUserListCount, count);
    return readList(kelvo::HotpixelGetUserList, count, User);
}

void BadpixelStorage::writeUserList(const std::vector<Badpixel> &entries) const
{
    const bool written = entries.empty() ? deleteUserList() : sendUserList(entries);
    if (!written) {
        throw std::runtime_error("Error writing hotpixel list");
    }
}

bool BadpixelStorage::deleteUserList() const
{
    return vx_HotPixel(handle, kelvo::HotpixelDeleteUserList, nullptr, 0) == kelvo::Success;
}

bool BadpixelStorage::sendUserList(const std::vector<Badpixel> &entries) const
{
    // The first word would wrap, and the camera would store a part of the list as if it were all.
    if (entries.size() > longestListWritten) {
        return false;
    }
    ListBuffer buffer = bufferFrom(entries);
    return vx_HotPixel(handle, kelvo::HotpixelWriteUserList, buffer.data(), bytesIn(buffer)) ==
           kelvo::Success;
}

void BadpixelStorage::readCount(kelvo::HotpixelCommand command, std::int32_t &count) const
{
    vx_HotPixel(handle, command, &count, sizeof count);
}

std::vector<Badpixel> BadpixelStorage::readList(kelvo::HotpixelCommand command, std::int32_t count,
                                                Pixelclass kind) const
{
    if (count < 1 || count > longestListRead) {
        return {};
    }
    ListBuffer buffer(2 * static_cast<std::size_t>(count) + 1);
    if (vx_HotPixel(handle, command, buffer.data(), bytesIn(buffer)) != kelvo::Success) {
        return {};
    }
    return entriesFrom(buffer, kind);
}
