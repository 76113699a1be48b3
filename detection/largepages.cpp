// SPDX-License-Identifier: MIT
// Memory that is given in large pieces.
#include "largepages.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::size_t WorthAsking = std::size_t(4) << 20; // bytes; a large page has 2 MB

} // namespace

void askForLargePages(void *memory, std::size_t bytes) noexcept
{
    if (bytes < WorthAsking)
        return;
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t skipped = (page - start % page) % page; // the system takes whole pages only
    // Its answer changes nothing.
    (void)madvise(static_cast<char *>(memory) + skipped, bytes - skipped, MADV_HUGEPAGE);
}
