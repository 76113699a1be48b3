// SPDX-License-Identifier: MIT
// The ring of image buffers that the camera library fills in turn.
#pragma once

#include "imageinfo.h"
#include "kelvocodes.h"

#include <QVector>

/// One image buffer of the camera library, allocated for its whole life.
class ImageMemory final
{
public:
    /// @throws std::runtime_error "Can't allocate image memory."
    ImageMemory(kelvo::Handle handle, const ImageInfo &info);
    ~ImageMemory();
    ImageMemory(const ImageMemory &) = delete;
    ImageMemory &operator=(const ImageMemory &) = delete;

    char *data() const { return memory; }
    std::int32_t id() const { return memoryId; }

private:
    kelvo::Handle handle = kelvo::NoCamera;
    std::int32_t memoryId = 0;
    char *memory = nullptr; // owned by the library
};

/// The buffers of the open camera; empty while no camera is open.
class ImageSequence final
{
public:
    ImageSequence() = default;
    ~ImageSequence();
    ImageSequence(const ImageSequence &) = delete;
    ImageSequence &operator=(const ImageSequence &) = delete;

    /// Replaces whatever is held by `count` (from 1) buffers of the given size. A size of nothing, and one
    /// that takes more than a gibibyte in all, is not even asked for.
    /// @throws std::runtime_error "Can't allocate image memory." or "Can't add buffer to sequence."
    void setup(kelvo::Handle handle, int count, const ImageInfo &info);

    /// Takes all buffers out of the library's sequence and frees them.
    void clear();

    /// Whether this is the memory of one of the buffers.
    bool holds(const char *memory) const;

private:
    void addBuffer();

    kelvo::Handle handle = kelvo::NoCamera;
    ImageInfo info;
    QVector<ImageMemory *> buffers; // owned, in the order in which they joined the sequence
};
