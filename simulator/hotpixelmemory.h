// SPDX-License-Identifier: MIT
// The hot pixel memory of one camera: factory list and stored user list.
#pragma once

#include "kelvosim.h"
#include "liststore.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace kelvosim {

/// Outlives the opening and closing of its camera. Every function may be called from any thread.
class HotPixelMemory
{
public:
    /// Pixels in the order that correct() wants.
    using SortedPixels = std::shared_ptr<const std::vector<Pixel>>;

    HotPixelMemory(const std::string &serialNumber, ListStore &listStore);

    void setAbility(bool storesLists, std::uint32_t capacity);
    bool storesLists() const;

    /// How many user entries can be stored; 0 without storage.
    std::uint32_t capacity() const;

    std::vector<Pixel> factoryList() const;
    void setFactoryList(const std::vector<Pixel> &list);

    std::vector<Pixel> userList() const;

    /// @throws Failure when the camera stores no lists, when there are too many entries, or when the storage
    /// cannot be written
    void writeUserList(const std::vector<Pixel> &list);

    /// The same without asking what the camera can do.
    void replaceUserList(const std::vector<Pixel> &list);

    /// Looks at the storage anew.
    void refresh();

    /// All pixels of both lists.
    SortedPixels listed() const;

private:
    void combine();

    const std::string serial;
    ListStore &store;
    mutable std::mutex mutex; ///< guards all below
    bool canStore = true;
    std::uint32_t mostEntries = 0;
    std::vector<Pixel> factory;
    std::vector<Pixel> user;
    SortedPixels both;
};

/// Sorted and without doubles.
HotPixelMemory::SortedPixels sortedPixels(std::vector<Pixel> list);

} // namespace kelvosim
