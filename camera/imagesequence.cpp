// SPDX-License-Identifier: MIT
// Allocates, adds and frees the image buffers through the camera library.

#include "imagesequence.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>

namespace {

// A library that tells of a larger sensor is wrong: 268 megapixels of 8 bits are less in three buffers.
constexpr std::uint64_t MostBytes = std::uint64_t(1) << 30;

/// A negative side of the library is a very large one here.
bool isPossible(const ImageInfo &info, int count)
{
    if (info.width == 0 || info.height == 0)
        return false;
    const std::uint64_t line = (std::uint64_t(info.width) * info.bitsPerPixel + 31) / 32 * 4;
    return line <= MostBytes / static_cast<std::uint64_t>(count) / info.height;
}

std::runtime_error noMemory()
{
    return std::runtime_error("Can't allocate image memory.");
}

} // namespace

ImageMemory::ImageMemory(kelvo::Handle camera, const ImageInfo &info)
    : handle(camera)
{
    const kelvo::Status status = vx_AllocImageMem(
        handle, static_cast<std::int32_t>(info.width), static_cast<std::int32_t>(info.height),
        static_cast<std::int32_t>(info.bitsPerPixel), &memory, &memoryId);
    if (status != kelvo::Success || !memory)
        throw noMemory();
}

ImageMemory::~ImageMemory()
{
    vx_FreeImageMem(handle, memory, memoryId);
}

ImageSequence::~ImageSequence()
{
    clear();
}

void ImageSequence::setup(kelvo::Handle camera, int count, const ImageInfo &imageInfo)
{
    clear();
    handle = camera;
    info = imageInfo;
    if (!isPossible(info, count))
        throw noMemory();
    while (buffers.size() < count)
        addBuffer();
}

void ImageSequence::addBuffer()
{
    auto buffer = std::make_unique<ImageMemory>(handle, info);
    if (vx_AddToSequence(handle, buffer->data(), buffer->id()) != kelvo::Success)
        throw std::runtime_error("Can't add buffer to sequence.");
    buffers.append(buffer.get());
    static_cast<void>(buffer.release()); // the list has it now
}

void ImageSequence::clear()
{
    if (buffers.isEmpty())
        return;
    vx_ClearSequence(handle);
    qDeleteAll(buffers);
    buffers.clear();
}

bool ImageSequence::holds(const char *memory) const
{
    return std::any_of(buffers.begin(), buffers.end(),
                       [memory](const ImageMemory *buffer) { return buffer->data() == memory; });
}
