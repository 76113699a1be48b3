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
#include <utility>

namespace kelvosim {

namespace {

constexpr std::chrono::milliseconds LookInterval(120);
constexpr std::size_t LargestFile = 1 << 20;

/// The bench file and its content at the last look, used by one thread at a time.
class File
{
public:
    using Cameras = std::optional<std::vector<benchfile::Camera>>;

    explicit File(std::string benchFile)
        : path(std::move(benchFile))
    {
    }

    /// The cameras as the file says at once.
    Cameras firstLook();

    /// The cameras when the content is another one than before, can be understood, and was the same at the
    /// look before: an editor may be found in the middle of its writing.
    Cameras look();

private:
    using Text = std::optional<std::string>;

    Cameras takeUp(const Text &text);
    Text read() const;
    std::vector<benchfile::Camera> understand(const std::string &text) const;
    void complain(const std::string &what);

    std::string path;
    Text seen;             ///< at the last look
    Text takenUp;          ///< the last content that was taken up or refused
    std::string complaint; ///< the last one; the same is not told twice in a row
};

File::Cameras File::firstLook()
{
    seen = read();
    return takeUp(seen);
}

File::Cameras File::look()
{
    const Text text = read();
    return std::exchange(seen, text) == text ? takeUp(text) : std::nullopt;
}

/// An empty file asks for nothing: it is one that somebody is about to write.
File::Cameras File::takeUp(const Text &text)
{
    if (!text || text->empty()) {
        complain(text ? "is empty" : "cannot be read");
        takenUp.reset();
        return std::nullopt;
    }
    if (text == takenUp)
        return std::nullopt;
    takenUp = text;
    try {
        std::vector<benchfile::Camera> cameras = understand(*text);
        complaint.clear();
        return cameras;
    } catch (const benchfile::Error &error) {
        complain(error.what());
        return std::nullopt;
    }
}

/// Looks at the kind of file before it opens it: opening a pipe would wait for its writer.
File::Text File::read() const
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) ||
        std::filesystem::file_size(path, error) > LargestFile)
        return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in)
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
    return benchFile()->firstLook().value_or(std::vector<benchfile::Camera>());
}

void BenchWatcher::begin()
{
    if (benchFile())
        std::thread(watch).detach();
}

} // namespace kelvosim
