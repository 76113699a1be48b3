// SPDX-License-Identifier: MIT
// Encoding, checking and storing lists.

#include "listfile.h"

#include "failure.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace kelvosim {

namespace {

constexpr std::uint8_t Magic[] = {'K', 'V', 'H', 'P'};
constexpr std::uint32_t Version = 1;
constexpr std::size_t HeaderLength = 12;
constexpr std::size_t EntryLength = 4;
constexpr std::size_t CrcLength = 4;
constexpr std::uint32_t MostEntries = 0xFFFF;
constexpr std::size_t LargestFile = HeaderLength + EntryLength * MostEntries + CrcLength;

void append(std::vector<std::uint8_t> &bytes, std::uint32_t value, int length)
{
    for (int i = 0; i < length; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::uint32_t numberAt(const std::vector<std::uint8_t> &bytes, std::size_t at, int length)
{
    std::uint32_t value = 0;
    for (int i = length - 1; i >= 0; --i)
        value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    return value;
}

std::uint32_t crc32(const std::uint8_t *bytes, std::size_t length)
{
    std::uint32_t crc = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < length; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) ? 0xEDB88320u : 0u);
    }
    return ~crc;
}

void require(bool sound)
{
    if (!sound)
        throw Failure(DamagedFile, "The hot pixel file is damaged.");
}

/// Takes the unfinished file away again unless it was put in place.
class Unfinished
{
public:
    explicit Unfinished(std::string file)
        : path(std::move(file))
    {
    }
    ~Unfinished() { std::remove(path.c_str()); }
    Unfinished(const Unfinished &) = delete;
    Unfinished &operator=(const Unfinished &) = delete;

    const std::string path;
};

void appendUtf8(std::string &text, std::uint32_t c)
{
    const auto put = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        put(c);
        return;
    }
    const int following = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    put((0xFF00u >> (following + 1) & 0xFFu) | c >> (6 * following));
    for (int i = following - 1; i >= 0; --i)
        put(0x80u | (c >> (6 * i) & 0x3Fu));
}

} // namespace

std::vector<std::uint8_t> encodeList(const std::vector<Pixel> &list)
{
    std::vector<std::uint8_t> bytes(std::begin(Magic), std::end(Magic));
    append(bytes, Version, 4);
    append(bytes, static_cast<std::uint32_t>(list.size()), 4);
    for (const Pixel &pixel : list) {
        append(bytes, pixel.x, 2);
        append(bytes, pixel.y, 2);
    }
    append(bytes, crc32(bytes.data(), bytes.size()), 4);
    return bytes;
}

std::vector<Pixel> decodeList(const std::vector<std::uint8_t> &bytes)
{
    require(bytes.size() >= HeaderLength + CrcLength && bytes.size() <= LargestFile);
    const std::size_t end = bytes.size() - CrcLength;
    require(crc32(bytes.data(), end) == numberAt(bytes, end, 4));
    require(std::equal(std::begin(Magic), std::end(Magic), bytes.begin()));
    require(numberAt(bytes, 4, 4) == Version);
    const std::uint32_t count = numberAt(bytes, 8, 4);
    require(count <= MostEntries && HeaderLength + EntryLength * count == end);
    std::vector<Pixel> list;
    for (std::size_t at = HeaderLength; at < end; at += EntryLength)
        list.push_back({static_cast<std::uint16_t>(numberAt(bytes, at, 2)),
                        static_cast<std::uint16_t>(numberAt(bytes, at + 2, 2))});
    return list;
}

std::vector<Pixel> readListFile(const std::string &path)
{
    std::error_code error;
    const bool plain =
        std::filesystem::is_regular_file(path, error); // to open a pipe would wait for its writer
    std::ifstream in;
    if (plain)
        in.open(path, std::ios::binary);
    if (!in.is_open())
        throw Failure(CannotOpenFile, "Can't open the hot pixel file.");
    require(std::filesystem::file_size(path, error) <= LargestFile);
    return decodeList({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
}

void writeListFile(const std::string &path, const std::vector<Pixel> &list)
{
    const Unfinished unfinished(path + "." + std::to_string(getpid()) + ".new");
    const std::vector<std::uint8_t> bytes = encodeList(list);
    std::ofstream out(unfinished.path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out || std::rename(unfinished.path.c_str(), path.c_str()) != 0)
        throw Failure(CannotWriteFile, "Can't write the hot pixel file.");
}

std::string narrowPath(const wchar_t *path)
{
    std::string narrow;
    for (; *path != L'\0'; ++path)
        appendUtf8(narrow, static_cast<std::uint32_t>(*path));
    return narrow;
}

} // namespace kelvosim
