// SPDX-License-Identifier: MIT
// Frames from a folder of PGM and PNG files instead of the sensor model.
#pragma once

#include "frameview.h"

#include <string>
#include <vector>

namespace kelvosim {

/// An 8-bit grey picture, rows without padding.
struct GreyPicture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

/// Reads a binary PGM file of at most 255 grey values.
/// @return a picture of width 0 when the file is anything else or damaged
GreyPicture readPgm(const std::string &path);

/// Reads a PNG file of 8 bits a channel; colours become grey.
/// @return a picture of width 0 when the file is anything else or damaged
GreyPicture readPng(const std::string &path);

/// Plays the frames in name order, again and again. The first usable one gives the size; frames of another
/// size and files that cannot be read are passed over.
class FrameFolder final : public FrameSource
{
public:
    explicit FrameFolder(const std::string &folder);

    bool isUsable() const { return !files.empty(); }
    int width() const { return columns; }
    int height() const { return rows; }

    bool fill(const FrameView &frame, const Exposure &exposure) override;

private:
    GreyPicture next();

    std::vector<std::string> files;
    std::size_t position = 0;
    int columns = 0;
    int rows = 0;
};

} // namespace kelvosim
