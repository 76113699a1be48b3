// SPDX-License-Identifier: MIT
// How much memory a test takes.
#pragma once

#include <cstdint>
#include <cstdio>

#include <unistd.h>

/// Resident memory of this process in bytes. 0 under a sanitizer, which keeps what was freed: then nothing
/// can be said of it.
inline std::int64_t residentMemory()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 0;
#else
    long total = 0;
    long resident = 0;
    std::FILE *file = std::fopen("/proc/self/statm", "r");
    if (!file)
        return 0;
    if (std::fscanf(file, "%ld %ld", &total, &resident) != 2)
        resident = 0;
    std::fclose(file);
    return std::int64_t(resident) * sysconf(_SC_PAGESIZE);
#endif
}
