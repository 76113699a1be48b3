// SPDX-License-Identifier: MIT
// Image memory of an open camera, and the sequence in which it is filled.
#pragma once

#include "frameview.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace kelvosim {

/// One block of image memory; rows are padded to 32 bits and the block ends with the last row.
struct Buffer
{
    Buffer(std::int32_t memoryId, int imageWidth, int imageHeight, int bits);

    FrameView view() const;
    char *address() const { return reinterpret_cast<char *>(memory.get()); }

    const std::int32_t id;
    const int width;
    const int height;
    const int bitsPerPixel;
    const std::size_t lineLength; ///< bytes
    const std::unique_ptr<std::uint8_t[]> memory;
    bool locked = false;
    bool filling = false; ///< the camera is writing into it
};

using BufferPointer = std::shared_ptr<Buffer>;

/// Guarded by the lock of the camera that owns it.
class BufferRing
{
public:
    static constexpr std::int32_t ByAddress = -1;

    BufferPointer allocate(int width, int height, int bitsPerPixel);

    /// @throws Failure when no buffer has this address (and this id)
    BufferPointer find(const char *memory) const;
    BufferPointer find(const char *memory, std::int32_t id) const;

    /// Takes the buffer out of the sequence, too.
    void release(const BufferPointer &buffer);

    /// @throws Failure when the buffer is in the sequence already
    void addToSequence(const BufferPointer &buffer);
    void clearSequence();
    bool isSequenceEmpty() const { return sequence.empty(); }

    /// A buffer by its place in the sequence, from 1, or by its address when the number is ByAddress.
    BufferPointer named(std::int32_t number, const char *memory) const;

    /// The next buffer in turn that is neither locked nor being filled; null when there is none.
    BufferPointer nextFree() const;

    /// The buffer that the camera is writing into, or else the one that it will take next.
    BufferPointer current() const;

    /// The buffer holds a whole frame now and is the last one, if it still belongs to the sequence.
    void complete(const BufferPointer &buffer);

    BufferPointer last() const { return lastComplete; }

    /// Place in the sequence, from 1; 0 when the buffer is not in it.
    std::int32_t numberOf(const BufferPointer &buffer) const;

    void clear();
    int allocatedCount() const { return static_cast<int>(buffers.size()); }
    int lockedCount() const;

private:
    std::vector<BufferPointer> buffers;
    std::vector<BufferPointer> sequence;
    BufferPointer lastComplete;
    std::size_t turn = 0; ///< index in the sequence of the buffer to fill next
    std::int32_t lastId = 0;
};

} // namespace kelvosim
