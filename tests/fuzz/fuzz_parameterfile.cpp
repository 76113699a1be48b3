// SPDX-License-Identifier: MIT
// Reads whatever the fuzzer comes up with as a parameter file.

#include "readparameterfile.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const ReadParameterFile read(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    if (!read.isSound())
        std::abort();
    return 0;
}
