// SPDX-License-Identifier: MIT
// The commands of vx_HotPixel on one open camera.
#pragma once

#include "hotpixelmemory.h"
#include "listlies.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace kelvosim {

/// Every function may be called from any thread.
class HotPixelUnit
{
public:
    HotPixelUnit(std::shared_ptr<HotPixelMemory> cameraMemory, const ListLies &wantedLies);

    /// Carries a command out.
    /// @throws Failure for a wrong size, a null pointer, an unknown command or one that cannot be done
    void command(std::uint32_t code, void *data, std::uint32_t size);

    bool isCorrecting() const { return correcting; }

    /// What correction replaces: both lists of the camera, or the library's current user list where the
    /// camera has no memory and correcting is the library's own work.
    HotPixelMemory::SortedPixels listed() const;

    std::vector<Pixel> currentUserList() const;

private:
    std::uint32_t toldCount(const std::vector<Pixel> &list) const;
    void writeList(const std::vector<Pixel> &list, void *data, std::uint32_t size) const;
    void setCurrentList(const std::vector<Pixel> &list);
    std::vector<Pixel> heldList() const;
    std::uint32_t supportedModes() const;

    const std::shared_ptr<HotPixelMemory> memory;
    const ListLies &lies;
    std::atomic<bool> correcting{false};
    mutable std::mutex mutex; ///< guards all below
    std::optional<std::vector<Pixel>> current;
    HotPixelMemory::SortedPixels currentSorted;
};

} // namespace kelvosim
