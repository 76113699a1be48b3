// SPDX-License-Identifier: MIT
// Allocates, adds and frees the image buffers through the camera library.

#include "imagesequence.h"

#include <memory>
#include <stdexcept>

ImageMemory::ImageMemory(kelvo::Handle camera, const ImageInfo &info)
    : handle(camera)
{
    const kelvo::Status status = vx_AllocImageMem(
        handle, static_cast<std::int32_t>(info.width), static_cast<std::int32_t>(info.height),
        static_cast<std::int32_t>(info.bitsPerPixel), &memory, &memoryId);
    if (status != kelvo::Success)
        throw std::runtime_error("Can't allocate image memory.");
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
    while (buffers.size() < count)
        addBuffer();
}

void ImageSequence::addBuffer()
{
    auto buffer = std::make_unique<ImageMemory>(handle, info);
    if (vx_AddToSequence(handle, buffer->data(), buffer->id()) != kelvo::Success)
        throw std::runtime_error("Can't add buffer to sequence.");
    buffers.append(buffer.get());
    buffer.release();
}

void ImageSequence::clear()
{
    if (buffers.isEmpty())
        return;
    vx_ClearSequence(handle);
    qDeleteAll(buffers);
    buffers.clear();
}
