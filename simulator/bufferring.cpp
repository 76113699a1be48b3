// SPDX-License-Identifier: MIT
// Allocating buffers and taking them in turn.

#include "bufferring.h"

#include "failure.h"

#include <algorithm>

namespace kelvosim {

namespace {

constexpr int LargestSide = 16384;

std::size_t paddedLine(int width, int bitsPerPixel)
{
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bitsPerPixel) + 31) / 32 * 4;
}

Failure unknownBuffer()
{
    return Failure(UnknownBuffer, "The image memory is unknown.");
}

} // namespace

Buffer::Buffer(std::int32_t memoryId, int imageWidth, int imageHeight, int bits)
    : id(memoryId)
    , width(imageWidth)
    , height(imageHeight)
    , bitsPerPixel(bits)
    , lineLength(paddedLine(imageWidth, bits))
    , memory(new std::uint8_t[lineLength * static_cast<std::size_t>(imageHeight)]())
{
}

FrameView Buffer::view() const
{
    return {memory.get(), width, height, bitsPerPixel / 8, lineLength};
}

BufferPointer BufferRing::allocate(int width, int height, int bitsPerPixel)
{
    const bool sized = width > 0 && height > 0 && width <= LargestSide && height <= LargestSide;
    if (!sized || (bitsPerPixel != 8 && bitsPerPixel != 16 && bitsPerPixel != 24 && bitsPerPixel != 32))
        throw Failure(InvalidParameter, "The size of the image memory is not possible.");
    buffers.push_back(std::make_shared<Buffer>(++lastId, width, height, bitsPerPixel));
    return buffers.back();
}

BufferPointer BufferRing::find(const char *memory) const
{
    const auto buffer = std::find_if(buffers.begin(), buffers.end(),
                                     [memory](const BufferPointer &b) { return b->address() == memory; });
    if (buffer == buffers.end())
        throw unknownBuffer();
    return *buffer;
}

BufferPointer BufferRing::find(const char *memory, std::int32_t id) const
{
    BufferPointer buffer = find(memory);
    if (buffer->id != id)
        throw unknownBuffer();
    return buffer;
}

void BufferRing::release(const BufferPointer &buffer)
{
    sequence.erase(std::remove(sequence.begin(), sequence.end(), buffer), sequence.end());
    buffers.erase(std::remove(buffers.begin(), buffers.end(), buffer), buffers.end());
    if (lastComplete == buffer)
        lastComplete.reset();
}

void BufferRing::addToSequence(const BufferPointer &buffer)
{
    if (numberOf(buffer) != 0)
        throw Failure(InvalidParameter, "The image memory is in the sequence already.");
    sequence.push_back(buffer);
}

void BufferRing::clearSequence()
{
    sequence.clear();
    lastComplete.reset();
    turn = 0;
}

BufferPointer BufferRing::named(std::int32_t number, const char *memory) const
{
    if (number == ByAddress)
        return find(memory);
    if (number < 1 || static_cast<std::size_t>(number) > sequence.size())
        throw unknownBuffer();
    return sequence[static_cast<std::size_t>(number) - 1];
}

BufferPointer BufferRing::nextFree() const
{
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        const BufferPointer &buffer = sequence[(turn + i) % sequence.size()];
        if (!buffer->locked && !buffer->filling)
            return buffer;
    }
    return nullptr;
}

BufferPointer BufferRing::current() const
{
    const auto filling = std::find_if(sequence.begin(), sequence.end(),
                                      [](const BufferPointer &buffer) { return buffer->filling; });
    return filling == sequence.end() ? nextFree() : *filling;
}

void BufferRing::complete(const BufferPointer &buffer)
{
    const std::int32_t number = numberOf(buffer);
    if (number == 0)
        return;
    turn = static_cast<std::size_t>(number) % sequence.size();
    lastComplete = buffer;
}

std::int32_t BufferRing::numberOf(const BufferPointer &buffer) const
{
    const auto found = std::find(sequence.begin(), sequence.end(), buffer);
    return found == sequence.end() ? 0 : static_cast<std::int32_t>(found - sequence.begin()) + 1;
}

void BufferRing::clear()
{
    clearSequence();
    buffers.clear();
}

int BufferRing::lockedCount() const
{
    return static_cast<int>(
        std::count_if(buffers.begin(), buffers.end(), [](const BufferPointer &b) { return b->locked; }));
}

} // namespace kelvosim
