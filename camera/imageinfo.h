// SPDX-License-Identifier: MIT
// The size of the camera's image buffers, passed around by value.
#pragma once

#include <QMetaType>

#include <cstdint>

/// Width and height in pixels, and bits per pixel (8 or 32); all 0 while nothing is known.
struct ImageInfo
{
    ImageInfo() = default;
    ImageInfo(std::uint32_t imageWidth, std::uint32_t imageHeight, std::uint32_t imageBitsPerPixel)
        : width(imageWidth)
        , height(imageHeight)
        , bitsPerPixel(imageBitsPerPixel)
    {
    }

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bitsPerPixel = 0;
};

Q_DECLARE_METATYPE(ImageInfo)
