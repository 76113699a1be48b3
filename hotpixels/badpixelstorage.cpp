// SPDX-License-Identifier: MIT
// Exchanges hot pixel lists with the camera's own memory.
#include "badpixelstorage.h"

#include "camera.h"
#include "listbuffer.h"

#include <stdexcept>

namespace {

// Longer lists are taken for a misreading of the camera and skipped.
constexpr std::int32_t longestListRead = 1000;

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
    if (entries.size() > longestList) {
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
