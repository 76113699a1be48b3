// SPDX-License-Identifier: MIT
// Keeping the two lists and their union.

#include "hotpixelmemory.h"

#include "correction.h"
#include "failure.h"

#include <algorithm>
#include <utility>

namespace kelvosim {

HotPixelMemory::HotPixelMemory(const std::string &serialNumber, ListStore &listStore)
    : serial(serialNumber)
    , store(listStore)
    , user(listStore.load(serialNumber))
{
    combine();
}

void HotPixelMemory::setAbility(bool storesLists, std::uint32_t capacity)
{
    const std::lock_guard<std::mutex> lock(mutex);
    canStore = storesLists;
    mostEntries = capacity;
    combine();
}

bool HotPixelMemory::storesLists() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return canStore;
}

std::uint32_t HotPixelMemory::capacity() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return canStore ? mostEntries : 0;
}

std::vector<Pixel> HotPixelMemory::factoryList() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return factory;
}

void HotPixelMemory::setFactoryList(const std::vector<Pixel> &list)
{
    const std::lock_guard<std::mutex> lock(mutex);
    factory = list;
    combine();
}

std::vector<Pixel> HotPixelMemory::userList() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return canStore ? user : std::vector<Pixel>();
}

void HotPixelMemory::writeUserList(const std::vector<Pixel> &list)
{
    if (!storesLists())
        throw Failure(NotSupported, "The camera has no hot pixel memory.");
    if (list.size() > capacity())
        throw Failure(ListTooLong, "The camera can't store so many hot pixels.");
    replaceUserList(list);
}

void HotPixelMemory::replaceUserList(const std::vector<Pixel> &list)
{
    store.save(serial, list);
    const std::lock_guard<std::mutex> lock(mutex);
    user = list;
    combine();
}

void HotPixelMemory::refresh()
{
    std::vector<Pixel> stored = store.load(serial);
    const std::lock_guard<std::mutex> lock(mutex);
    user = std::move(stored);
    combine();
}

HotPixelMemory::SortedPixels HotPixelMemory::listed() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return both;
}

void HotPixelMemory::combine()
{
    std::vector<Pixel> all = factory;
    if (canStore)
        all.insert(all.end(), user.begin(), user.end());
    both = sortedPixels(std::move(all));
}

HotPixelMemory::SortedPixels sortedPixels(std::vector<Pixel> list)
{
    std::sort(list.begin(), list.end(), comesBefore);
    list.erase(std::unique(list.begin(), list.end()), list.end());
    return std::make_shared<const std::vector<Pixel>>(std::move(list));
}

} // namespace kelvosim
