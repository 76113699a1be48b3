// SPDX-License-Identifier: MIT
// The library's binary file of a hot pixel list.
#pragma once

#include "kelvosim.h"

#include <string>
#include <vector>

namespace kelvosim {

/// The bytes of a list file: "KVHP", version 1, number of entries, the entries as pairs x, y, and the CRC-32
/// of everything before it. All numbers little-endian; version, count and CRC have 32 bits, x and y have 16.
std::vector<std::uint8_t> encodeList(const std::vector<Pixel> &list);

/// @throws Failure DamagedFile when the bytes are not exactly one list
std::vector<Pixel> decodeList(const std::vector<std::uint8_t> &bytes);

/// @throws Failure CannotOpenFile or DamagedFile
std::vector<Pixel> readListFile(const std::string &path);

/// Writes a new file and then puts it in the old one's place, so that no half-written list is ever seen.
/// @throws Failure CannotWriteFile; the old file is still there then
void writeListFile(const std::string &path, const std::vector<Pixel> &list);

/// A wide-character path in the file system's UTF-8.
std::string narrowPath(const wchar_t *path);

} // namespace kelvosim
