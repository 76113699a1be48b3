// SPDX-License-Identifier: MIT
// Follows the bench file while the program runs.
#pragma once

#include "benchfile.h"

namespace kelvosim {

namespace BenchWatcher {

/// The cameras of the file that the environment names, or the built-in ones when it names none. A file that
/// cannot be read or understood is told of on standard error and means no cameras.
std::vector<benchfile::Camera> firstState();

/// Starts the thread that takes changes up, when there is a file. It ends by itself when the bench is no
/// longer the file's.
void begin();

} // namespace BenchWatcher

} // namespace kelvosim
