// SPDX-License-Identifier: MIT
// Checking and carrying out hot pixel commands.

#include "hotpixelunit.h"

#include "failure.h"
#include "listfile.h"

#include <cstring>
#include <utility>

namespace kelvosim {

namespace {

enum Command : std::uint32_t {
    DisableCorrection = 0,
    EnableSoftwareCorrection = 2,
    GetSupportedModes = 0x8001,
    QueryCurrentUserList = 0x8100,
    GetCurrentUserListCount = 0x8101,
    GetCurrentUserList = 0x8102,
    SetCurrentUserList = 0x8103,
    GetFactoryListCount = 0x8107,
    GetFactoryList = 0x8108,
    GetUserListCount = 0x810A,
    GetUserList = 0x810B,
    WriteUserList = 0x810C,
    GetMaxUserListCount = 0x810D,
    DeleteUserList = 0x810E,
    SaveUserListToFile = 0x8111,
    LoadUserListFromFile = 0x8112,
};

constexpr std::uint32_t SoftwareMode = 1;
constexpr std::uint32_t CameraMode = 2;

std::size_t bufferSize(std::size_t entries)
{
    return 4 * entries + 2;
}

void writeWord(std::uint32_t value, void *data, std::uint32_t size)
{
    requireSize(size, sizeof value);
    std::memcpy(needed(data), &value, sizeof value);
}

std::vector<Pixel> readList(const void *data, std::uint32_t size)
{
    const auto *const bytes = static_cast<const std::uint8_t *>(needed(data));
    std::uint16_t count = 0;
    if (size < sizeof count)
        requireSize(size, sizeof count);
    std::memcpy(&count, bytes, sizeof count);
    requireSize(size, bufferSize(count));
    std::vector<Pixel> list(count);
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(&list[i].x, bytes + bufferSize(i), 2);
        std::memcpy(&list[i].y, bytes + bufferSize(i) + 2, 2);
    }
    return list;
}

std::string pathIn(void *data, std::uint32_t size)
{
    requireSize(size, 0);
    return narrowPath(static_cast<const wchar_t *>(needed(data)));
}

std::uint32_t countOf(const std::vector<Pixel> &list)
{
    return static_cast<std::uint32_t>(list.size());
}

} // namespace

HotPixelUnit::HotPixelUnit(std::shared_ptr<HotPixelMemory> cameraMemory, const ListLies &wantedLies)
    : memory(std::move(cameraMemory))
    , lies(wantedLies)
    , currentSorted(sortedPixels({}))
{
}

void HotPixelUnit::command(std::uint32_t code, void *data, std::uint32_t size)
{
    switch (code) {
    case DisableCorrection:
    case EnableSoftwareCorrection:
        requireSize(size, 0);
        correcting = code == EnableSoftwareCorrection;
        return;
    case GetSupportedModes:
        return writeWord(supportedModes(), data, size);
    case QueryCurrentUserList:
        requireSize(size, 0);
        heldList();
        return;
    case GetCurrentUserListCount:
        return writeWord(countOf(heldList()), data, size);
    case GetCurrentUserList:
        return writeList(heldList(), data, size);
    case SetCurrentUserList:
        return setCurrentList(readList(data, size));
    case GetFactoryListCount:
        return writeWord(toldCount(memory->factoryList()), data, size);
    case GetFactoryList:
        return writeList(memory->factoryList(), data, size);
    case GetUserListCount:
        return writeWord(toldCount(memory->userList()), data, size);
    case GetUserList:
        return writeList(memory->userList(), data, size);
    case WriteUserList:
        return memory->writeUserList(readList(data, size));
    case GetMaxUserListCount:
        return writeWord(memory->capacity(), data, size);
    case DeleteUserList:
        requireSize(size, 0);
        return memory->writeUserList({});
    case SaveUserListToFile:
        return writeListFile(pathIn(data, size), heldList());
    case LoadUserListFromFile:
        return setCurrentList(readListFile(pathIn(data, size)));
    default:
        throw Failure(UnknownCommand, "The hot pixel command is unknown.");
    }
}

HotPixelMemory::SortedPixels HotPixelUnit::listed() const
{
    if (memory->storesLists())
        return memory->listed();
    const std::lock_guard<std::mutex> lock(mutex);
    return currentSorted;
}

std::vector<Pixel> HotPixelUnit::currentUserList() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return current.value_or(std::vector<Pixel>());
}

/// @throws Failure when the library holds no current user list
std::vector<Pixel> HotPixelUnit::heldList() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!current)
        throw Failure(NoList, "There is no current user list.");
    return *current;
}

void HotPixelUnit::setCurrentList(const std::vector<Pixel> &list)
{
    const std::lock_guard<std::mutex> lock(mutex);
    current = list;
    currentSorted = sortedPixels(list);
}

std::uint32_t HotPixelUnit::toldCount(const std::vector<Pixel> &list) const
{
    return lies.aboutCounts ? static_cast<std::uint32_t>(lies.count.load()) : countOf(list);
}

void HotPixelUnit::writeList(const std::vector<Pixel> &list, void *data, std::uint32_t size) const
{
    requireSize(size, bufferSize(list.size()));
    auto *const bytes = static_cast<std::uint8_t *>(needed(data));
    const std::int32_t forced = lies.word;
    const auto count =
        static_cast<std::uint16_t>(forced < 0 ? list.size() : static_cast<std::size_t>(forced));
    std::memcpy(bytes, &count, sizeof count);
    for (std::size_t i = 0; i < list.size(); ++i) {
        std::memcpy(bytes + bufferSize(i), &list[i].x, 2);
        std::memcpy(bytes + bufferSize(i) + 2, &list[i].y, 2);
    }
}

std::uint32_t HotPixelUnit::supportedModes() const
{
    return memory->storesLists() ? SoftwareMode | CameraMode : SoftwareMode;
}

} // namespace kelvosim
