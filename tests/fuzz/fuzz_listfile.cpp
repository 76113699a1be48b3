// SPDX-License-Identifier: MIT
// Lets the simulated library load whatever the fuzzer comes up with as a hot pixel list file.
//
// No fuzzer guesses a checksum, so the first byte of the input says what to do about it: "r" and every other
// even byte takes the rest for the raw file, "s" and every other odd byte seals it with the right checksum.

#include "failure.h"
#include "fuzztarget.h"
#include "hotpixelunit.h"
#include "listfile.h"

#include <QFile>
#include <QTemporaryDir>

#include <zlib.h>

namespace {

using kelvosim::Pixel;
using List = std::vector<Pixel>;

constexpr std::uint32_t SetCurrent = 33027;
constexpr std::uint32_t SaveFile = 33041;
constexpr std::uint32_t LoadFile = 33042;

/// The commands of one camera on files of a folder of their own.
class Library
{
public:
    Library() { setCurrent({1, 2, 300, 400}); }

    List current() const { return unit.currentUserList(); }

    /// @return the status: 0 or what the library fails with
    int file(std::uint32_t command, const std::string &path)
    {
        std::wstring wide(path.begin(), path.end());
        try {
            unit.command(command, &wide[0], 0);
            return kelvosim::Success;
        } catch (const kelvosim::Failure &failure) {
            return failure.status();
        }
    }

private:
    void setCurrent(std::vector<std::uint16_t> words)
    {
        words.insert(words.begin(), static_cast<std::uint16_t>(words.size() / 2));
        unit.command(SetCurrent, words.data(), static_cast<std::uint32_t>(2 * words.size()));
    }

    kelvosim::ListStore store;
    kelvosim::ListLies lies;
    kelvosim::HotPixelUnit unit{std::make_shared<kelvosim::HotPixelMemory>("KV1", store), lies};
};

std::string pathOf(const char *name)
{
    static const QTemporaryDir folder;
    return folder.filePath(name).toStdString();
}

QByteArray sealed(const QByteArray &content)
{
    const auto sum =
        crc32(0, reinterpret_cast<const Bytef *>(content.data()), static_cast<uInt>(content.size()));
    QByteArray file = content;
    for (int i = 0; i < 4; ++i)
        file.append(static_cast<char>(sum >> (8 * i)));
    return file;
}

QByteArray fileOf(const QByteArray &input)
{
    const QByteArray content = input.mid(1);
    return !input.isEmpty() && input[0] % 2 ? sealed(content) : content;
}

void write(const std::string &path, const QByteArray &content)
{
    QFile file(QString::fromStdString(path));
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size(),
            "the fuzzer can write its file");
}

QByteArray contentOf(const std::string &path)
{
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray encoded(const List &list)
{
    const std::vector<std::uint8_t> bytes = kelvosim::encodeList(list);
    return bytesOf(bytes.data(), bytes.size());
}

void requireRefused(const QByteArray &content)
{
    Library library;
    const List before = library.current();
    write(pathOf("load"), content);
    require(library.file(LoadFile, pathOf("load")) == kelvosim::DamagedFile,
            "a damaged file gives status 51");
    require(library.current() == before, "a refused file leaves the current list alone");
}

void requireSound(Library &library, const QByteArray &content)
{
    require(encoded(library.current()) == content, "a list has one encoding, byte by byte");
    require(library.file(SaveFile, pathOf("save")) == kelvosim::Success, "a loaded list can be saved");
    require(contentOf(pathOf("save")) == content, "a saved list is the loaded one");
    requireRefused(content.left(content.size() - 1));
    requireRefused(content + '\0');
    QByteArray changed = content;
    changed[changed.size() / 2] = static_cast<char>(changed[changed.size() / 2] ^ 1);
    requireRefused(changed);
}

} // namespace

QByteArray outcomeOf(const QByteArray &input)
{
    const QByteArray content = fileOf(input);
    Library library;
    write(pathOf("load"), content);
    if (library.file(LoadFile, pathOf("load")) == kelvosim::Success) {
        requireSound(library, content);
        return "loaded";
    }
    requireRefused(content);
    return "refused";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    outcomeOf(bytesOf(data, size));
    return 0;
}
