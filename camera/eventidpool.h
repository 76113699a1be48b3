// SPDX-License-Identifier: MIT
// The process-wide pool of the private event codes with which event threads are woken.
#pragma once

#include <cstdint>

namespace EventIdPool {

/// Takes the code that was returned last. GUI thread only.
/// @throws std::runtime_error "Too many events :D" when none is left
std::uint32_t take();

/// Returns a code to the pool.
void giveBack(std::uint32_t code);

} // namespace EventIdPool
