// SPDX-License-Identifier: MIT
// Files and memory of stored user lists.

#include "liststore.h"

#include "failure.h"
#include "listfile.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace kelvosim {

namespace {

std::string environment(const char *name)
{
    const char *const value = std::getenv(name);
    return value ? value : "";
}

/// Serial numbers may hold any character; file names here hold letters, digits and "%" with the code of the
/// character.
std::string fileName(const std::string &serial)
{
    std::string name;
    for (const unsigned char c : serial) {
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned>(c));
        name += std::isalnum(c) ? std::string(1, static_cast<char>(c)) : escaped;
    }
    return name + ".hotpixels";
}

} // namespace

std::string ListStore::folderOfEnvironment()
{
    std::string own = environment("KELVOSIM_STORAGE");
    if (!own.empty())
        return own;
    const std::string data = environment("XDG_DATA_HOME");
    if (!data.empty())
        return data + "/kelvo-simulator";
    return environment("HOME") + "/.local/share/kelvo-simulator";
}

void ListStore::setFolder(const std::string &path)
{
    const std::lock_guard<std::mutex> lock(mutex);
    folder = path;
}

void ListStore::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    folder.clear();
    lists.clear();
}

std::vector<Pixel> ListStore::load(const std::string &serial) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (folder.empty()) {
        const auto list = lists.find(serial);
        return list == lists.end() ? std::vector<Pixel>() : list->second;
    }
    try {
        return readListFile(fileOf(serial));
    } catch (const Failure &failure) {
        if (failure.status() != CannotOpenFile)
            std::fprintf(stderr, "Stored list of camera %s: %s\n", serial.c_str(), failure.what());
        return {};
    }
}

void ListStore::save(const std::string &serial, const std::vector<Pixel> &list)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (folder.empty()) {
        lists[serial] = list;
        return;
    }
    std::error_code error; // seen when the file cannot be written
    std::filesystem::create_directories(folder, error);
    writeListFile(fileOf(serial), list);
}

std::string ListStore::fileOf(const std::string &serial) const
{
    return folder + "/" + fileName(serial);
}

} // namespace kelvosim
