// SPDX-License-Identifier: MIT
// Reading the bench file again and again.

#include "benchwatcher.h"

#include "defaultbench.h"
#include "library.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>

namespace kelvosim {

namespace {

constexpr std::chrono::milliseconds LookInterval(200);
constexpr std::size_t LargestFile = 1 << 20;

/// The bench file and its last content, used by one thread at a time.
class File
{
public:
    explicit File(std::string benchFile)
        : path(std::move(benchFile))
    {
    }

    /// The cameras when the content is another one than at the last look and can be understood.
    std::optional<std::vector<benchfile::Camera>> look();

private:
    std::optional<std::string> read() const;
    std::vector<benchfile::Camera> understand(const std::string &text) const;
    void complain(const std::string &what);

    std::string path;
    std::optional<std::string> seen;
    std::string complaint; ///< the last one; the same is not told twice in a row
};

std::optional<std::vector<benchfile::Camera>> File::look()
{
    const std::optional<std::string> text = read();
    if (!text) {
        complain("cannot be read");
        seen.reset();
        return std::nullopt;
    }
    if (text == seen)
        return std::nullopt;
    seen = text;
    try {
        std::vector<benchfile::Camera> cameras = understand(*text);
        complaint.clear();
        return cameras;
    } catch (const benchfile::Error &error) {
        complain(error.what());
        return std::nullopt;
    }
}

std::optional<std::string> File::read() const
{
    std::ifstream in(path, std::ios::binary);
    std::error_code error;
    if (!in || !std::filesystem::is_regular_file(path, error) ||
        std::filesystem::file_size(path, error) > LargestFile)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/// Replay folders are relative to the bench file.
std::vector<benchfile::Camera> File::understand(const std::string &text) const
{
    std::vector<benchfile::Camera> cameras = benchfile::parse(text);
    for (benchfile::Camera &camera : cameras) {
        std::string &folder = camera.spec.replayFolder;
        if (!folder.empty())
            folder = (std::filesystem::path(path).parent_path() / folder).string();
    }
    return cameras;
}

void File::complain(const std::string &what)
{
    if (what != complaint)
        std::fprintf(stderr, "Bench file %s: %s\n", path.c_str(), what.c_str());
    complaint = what;
}

/// Null when the environment names no file. Never destroyed: the thread may outlive everything else.
File *benchFile()
{
    static File *const file = [] {
        const char *const path = std::getenv("KELVOSIM_BENCH");
        return path && *path ? new File(path) : nullptr;
    }();
    return file;
}

void watch()
{
    while (Library::instance().isBenchFromFile()) {
        std::this_thread::sleep_for(LookInterval);
        if (const auto cameras = benchFile()->look())
            Library::instance().apply(*cameras);
    }
}

} // namespace

std::vector<benchfile::Camera> BenchWatcher::firstState()
{
    if (!benchFile())
        return benchfile::parse(DefaultBench);
    return benchFile()->look().value_or(std::vector<benchfile::Camera>());
}

void BenchWatcher::begin()
{
    if (benchFile())
        std::thread(watch).detach();
}

} // namespace kelvosim
