// SPDX-License-Identifier: MIT
// The visitors with which detectors go through matrices and frames in step.
#pragma once

#include "badpixeldetector.h"

class BadpixelDetector::PixelValIterator
{
public:
    virtual ~PixelValIterator() = default;
    virtual void operator()(unsigned int &value, const uchar &pixel) = 0;
};

class BadpixelDetector::PixelPosIterator
{
public:
    virtual ~PixelPosIterator() = default;
    virtual void operator()(unsigned int &value, int x, int y) = 0;
};

/// Hands each element on with the frame's pixel at the walk's position. The frame, the layout and the
/// receiver are borrowed.
class BadpixelDetector::ImageIterator final : public Matrix<unsigned int>::Iterator
{
public:
    ImageIterator(const QImage &frame, const PlaneLayout &layout, PixelValIterator *pixelReceiver)
        : walk(layout, frame.width())
        , receiver(pixelReceiver)
        , pixels(frame.constBits())
        , width(static_cast<std::size_t>(frame.width()))
        , byteCount(static_cast<std::size_t>(frame.bytesPerLine()) * static_cast<std::size_t>(frame.height()))
    {
    }

    void operator()(unsigned int &value) override
    {
        // Kept: the width is the row pitch, whatever the bytes per line are.
        const std::size_t offset =
            static_cast<std::size_t>(walk.y()) * width + static_cast<std::size_t>(walk.x());
        (*receiver)(value, offset < byteCount ? pixels[offset] : Nothing);
        walk.advance();
    }

private:
    // Frames of less than a byte a pixel end before the walk does: dark is what lies behind.
    static constexpr uchar Nothing = 0;

    PixelWalk walk;
    PixelValIterator *receiver;
    const uchar *pixels;
    std::size_t width;
    std::size_t byteCount;
};

/// Hands each element on with the walk's position. The layout and the receiver are borrowed.
class BadpixelDetector::ImagePosIterator final : public Matrix<unsigned int>::Iterator
{
public:
    ImagePosIterator(const QImage &frame, const PlaneLayout &layout, PixelPosIterator *positionReceiver)
        : walk(layout, frame.width())
        , receiver(positionReceiver)
    {
    }

    void operator()(unsigned int &value) override
    {
        (*receiver)(value, walk.x(), walk.y());
        walk.advance();
    }

private:
    PixelWalk walk;
    PixelPosIterator *receiver;
};

/// Divides each element, rounding down.
class BadpixelDetector::DivIterator final : public Matrix<unsigned int>::Iterator
{
public:
    /// The divisor must not be 0.
    explicit DivIterator(unsigned int by)
        : divisor(by)
    {
    }

    void operator()(unsigned int &value) override { value /= divisor; }

private:
    unsigned int divisor;
};

class BadpixelDetector::CopyIterator final : public BadpixelDetector::PixelValIterator
{
public:
    void operator()(unsigned int &value, const uchar &pixel) override { value = pixel; }
};

class BadpixelDetector::SumIterator final : public BadpixelDetector::PixelValIterator
{
public:
    void operator()(unsigned int &value, const uchar &pixel) override { value += pixel; }
};
