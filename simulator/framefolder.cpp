// SPDX-License-Identifier: MIT
// Listing, decoding and playing frames.

#include "framefolder.h"

#include <png.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace kelvosim {

namespace {

constexpr int LargestSide = 16384;

bool isSide(int length)
{
    return length >= 1 && length <= LargestSide;
}

/// A number of a PGM header, with the blanks and comments before it.
/// @return -1 when there is none, or one too large
int headerNumber(std::istream &in)
{
    for (int c = in.peek(); c == '#' || std::isspace(c); c = in.peek()) {
        if (in.get() == '#')
            in.ignore(1 << 20, '\n');
    }
    int value = -1;
    while (std::isdigit(in.peek()))
        value = std::min(std::max(value, 0) * 10 + (in.get() - '0'), 1 << 20);
    return value;
}

std::string lowerCaseExtension(const std::filesystem::path &path)
{
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

GreyPicture readPicture(const std::string &path)
{
    return lowerCaseExtension(path) == ".png" ? readPng(path) : readPgm(path);
}

std::vector<std::string> pictureFiles(const std::string &folder)
{
    std::vector<std::string> files;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string extension = lowerCaseExtension(entry->path());
        std::error_code unknown;
        if ((extension == ".pgm" || extension == ".png") && entry->is_regular_file(unknown))
            files.push_back(entry->path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Frees what the decoder holds, whichever way the function is left.
struct PngImage
{
    png_image image{};
    PngImage() { image.version = PNG_IMAGE_VERSION; }
    ~PngImage() { png_image_free(&image); }
    PngImage(const PngImage &) = delete;
    PngImage &operator=(const PngImage &) = delete;
};

} // namespace

GreyPicture readPgm(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    if (in.get() != 'P' || in.get() != '5')
        return {};
    GreyPicture picture;
    picture.width = headerNumber(in);
    picture.height = headerNumber(in);
    const int maximum = headerNumber(in);
    if (!isSide(picture.width) || !isSide(picture.height) || maximum < 1 || maximum > 255 ||
        !std::isspace(in.get()))
        return {};
    picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
    in.read(reinterpret_cast<char *>(picture.pixels.data()),
            static_cast<std::streamsize>(picture.pixels.size()));
    return in ? picture : GreyPicture();
}

GreyPicture readPng(const std::string &path)
{
    PngImage png;
    png_image &image = png.image;
    if (!png_image_begin_read_from_file(&image, path.c_str()) || (image.format & PNG_FORMAT_FLAG_LINEAR) ||
        image.width > LargestSide || image.height > LargestSide)
        return {};
    image.format = PNG_FORMAT_GRAY;
    GreyPicture picture;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    picture.pixels.resize(PNG_IMAGE_SIZE(image));
    const png_color black{};
    if (!png_image_finish_read(&image, &black, picture.pixels.data(), 0, nullptr))
        return {};
    return picture;
}

FrameFolder::FrameFolder(const std::string &folder)
    : files(pictureFiles(folder))
{
    const GreyPicture first = next();
    columns = first.width;
    rows = first.height;
    position = 0;
    if (columns == 0)
        files.clear();
}

bool FrameFolder::fill(const FrameView &frame, const Exposure &)
{
    const GreyPicture picture = next();
    if (picture.width != frame.width || picture.height != frame.height)
        return false;
    const std::uint8_t *grey = picture.pixels.data();
    for (int y = 0; y < frame.height; ++y) {
        if (frame.bytesPerPixel == 1)
            std::memcpy(frame.line(y), grey, static_cast<std::size_t>(frame.width));
        for (int x = 0; frame.bytesPerPixel == 4 && x < frame.width; ++x)
            std::memset(frame.at(x, y), grey[x], 3);
        grey += frame.width;
    }
    return true;
}

/// The next picture of the right size, or of any size as long as none is known; each file is tried once.
GreyPicture FrameFolder::next()
{
    for (std::size_t tried = 0; tried < files.size(); ++tried) {
        GreyPicture picture = readPicture(files[position]);
        position = (position + 1) % files.size();
        const bool fits = columns == 0 || (picture.width == columns && picture.height == rows);
        if (picture.width > 0 && fits)
            return picture;
    }
    return {};
}

} // namespace kelvosim
