// SPDX-License-Identifier: MIT
// What a reader of foreign bytes offers to the fuzzer and to the test that runs its corpus.
#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>

/// Reads the input, holds the result against all that must be true of every input, and ends the program where
/// it is not.
/// @return what became of the input, in the word that the names of such corpus files begin with
QByteArray outcomeOf(const QByteArray &input);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// A copy, as files are read into memory of the program.
inline QByteArray bytesOf(const std::uint8_t *data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size));
}

inline void require(bool holds, const char *what)
{
    if (!holds)
        qFatal("Not so: %s", what);
}
