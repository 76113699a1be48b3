// SPDX-License-Identifier: MIT
// Asks the camera library for its current user list and its files.
#include "currentuserlist.h"

#include "camera.h"

#include <QString>

#include <algorithm>
#include <string>

namespace {

// Our own: a list of that length was not asked for, because no buffer can hold it.
constexpr kelvo::Status impossibleCount = -1;

ListBuffer emptyList()
{
    return {0};
}

// A list is sent back by its first word, so this must not promise more or less than what follows.
void trim(ListBuffer &list)
{
    const std::size_t room = (list.size() - 1) / 2;
    list[0] = static_cast<std::uint16_t>(std::min<std::size_t>(list[0], room));
    list.resize(2 * std::size_t(list[0]) + 1);
}

} // namespace

CurrentUserList::CurrentUserList(const Camera *camera)
{
    if (camera) {
        handle = camera->handle();
    }
}

kelvo::Status CurrentUserList::read(ListBuffer &list) const
{
    list = emptyList();
    if (!isHeld()) {
        return kelvo::Success;
    }
    std::uint32_t count = 0;
    kelvo::Status status = vx_HotPixel(handle, kelvo::HotpixelGetCurrentUserListCount, &count, sizeof count);
    if (status != kelvo::Success) {
        return status;
    }
    if (count > longestList) {
        return impossibleCount;
    }
    list.resize(2 * std::size_t(count) + 1);
    status = vx_HotPixel(handle, kelvo::HotpixelGetCurrentUserList, list.data(), bytesIn(list));
    trim(list);
    return status;
}

kelvo::Status CurrentUserList::set(ListBuffer list) const
{
    return vx_HotPixel(handle, kelvo::HotpixelSetCurrentUserList, list.data(), bytesIn(list));
}

kelvo::Status CurrentUserList::saveTo(const QString &filename) const
{
    return command(kelvo::HotpixelSaveUserListToFile, filename);
}

kelvo::Status CurrentUserList::loadFrom(const QString &filename) const
{
    return command(kelvo::HotpixelLoadUserListFromFile, filename);
}

bool CurrentUserList::isHeld() const
{
    return vx_HotPixel(handle, kelvo::HotpixelQueryCurrentUserList, nullptr, 0) == kelvo::Success;
}

// The library takes paths as wide characters that end with a 0, and a size of 0 with them.
kelvo::Status CurrentUserList::command(kelvo::HotpixelCommand code, const QString &filename) const
{
    std::wstring path = filename.toStdWString();
    return vx_HotPixel(handle, code, &path[0], 0);
}
