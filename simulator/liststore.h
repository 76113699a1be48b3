// SPDX-License-Identifier: MIT
// Where the user lists stored in simulated cameras survive the end of the program.
#pragma once

#include "kelvosim.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace kelvosim {

/// A list file per serial number in a folder, or the memory of this process when there is no folder.
class ListStore
{
public:
    /// The folder that the environment asks for, or else one in the user's data folder.
    static std::string folderOfEnvironment();

    void setFolder(const std::string &path);

    /// Forgets the folder and all lists of this process.
    void clear();

    /// An empty list when none was stored. A damaged file counts as none and is told of on standard error.
    std::vector<Pixel> load(const std::string &serial) const;

    /// @throws Failure CannotWriteFile; the old list is still stored then
    void save(const std::string &serial, const std::vector<Pixel> &list);

private:
    std::string fileOf(const std::string &serial) const;

    mutable std::mutex mutex; ///< guards all below
    std::string folder;
    std::map<std::string, std::vector<Pixel>> lists;
};

} // namespace kelvosim
