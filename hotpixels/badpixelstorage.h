// SPDX-License-Identifier: MIT
// Exchanges hot pixel lists with the camera's own memory.
#pragma once

#include "badpixel.h"
#include "kelvocodes.h"

#include <cstdint>
#include <vector>

class Camera;

/// The hot pixel memory of the open camera. Reading never reports a failure: a list that cannot be read is
/// empty. GUI thread only.
class BadpixelStorage final
{
public:
    /// A closed or null camera has no memory: nothing is read, and writing fails.
    explicit BadpixelStorage(const Camera *camera);

    /// Lets the library write its answer into `count`; a failing call leaves there what it leaves.
    void readMaximumUserEntries(std::int32_t &count) const;
    void readFactoryCount(std::int32_t &count) const;

    /// The factory list, which is said to have `count` entries; empty for a count outside 1 to 1000.
    std::vector<Badpixel> factoryList(std::int32_t count) const;

    /// The stored user list; empty when its count lies outside 1 to 1000.
    std::vector<Badpixel> userList() const;

    /// Replaces the stored user list by the places of `entries`, in their order; none empties it.
    /// @throws std::runtime_error "Error writing hotpixel list"
    void writeUserList(const std::vector<Badpixel> &entries) const;

private:
    bool deleteUserList() const;
    bool sendUserList(const std::vector<Badpixel> &entries) const;
    void readCount(kelvo::HotpixelCommand command, std::int32_t &count) const;
    std::vector<Badpixel> readList(kelvo::HotpixelCommand command, std::int32_t count, Pixelclass kind) const;

    kelvo::Handle handle = kelvo::NoCamera;
};
