// SPDX-License-Identifier: MIT
// Frames for the detector's tests, and the walk over them written down as a plain list of places.
#pragma once

#include <QImage>
#include <QPoint>
#include <QRandomGenerator>
#include <QVector>

#include <cstddef>
#include <cstring>
#include <vector>

namespace testframes {

constexpr int Mono = 6;
constexpr int RawBayer = 11;

/// An 8-bit frame of these pixels, row after row, its rows padded with 255.
inline QImage frame(int width, int height, const std::vector<uchar> &pixels)
{
    QImage image(width, height, QImage::Format_Indexed8);
    std::memset(image.bits(), 255, static_cast<std::size_t>(image.bytesPerLine()) * height);
    for (int y = 0; y < height; ++y)
        std::memcpy(image.scanLine(y), pixels.data() + static_cast<std::size_t>(y) * width, width);
    return image;
}

/// A frame of one grey value, down to its padding.
inline QImage flat(int width, int height, uchar grey)
{
    QImage image(width, height, QImage::Format_Indexed8);
    std::memset(image.bits(), grey, static_cast<std::size_t>(image.bytesPerLine()) * height);
    return image;
}

/// A frame that is random down to its padding.
inline QImage noise(int width, int height, QRandomGenerator *random,
                    QImage::Format format = QImage::Format_Indexed8)
{
    QImage image(width, height, format);
    uchar *bytes = image.bits();
    for (int i = 0; i < image.bytesPerLine() * height; ++i)
        bytes[i] = static_cast<uchar>(random->bounded(256));
    return image;
}

/// A plane of a frame: its first place, its pitch in both directions, and how many elements it has.
struct PlaneOfFrame
{
    int firstX;
    int firstY;
    int pitch;
    int count;
};

/// The planes in the order in which they are judged.
inline std::vector<PlaneOfFrame> planes(int mode, int width, int height)
{
    if (mode == Mono)
        return {{0, 0, 1, width * height}};
    const int quarter = (width / 2) * (height / 2);
    return {{0, 0, 2, quarter}, {0, 1, 2, quarter}, {1, 0, 2, quarter}, {1, 1, 2, quarter}};
}

/// The places of a plane's elements, in order: full rows that include x = width, as many as it takes.
inline std::vector<QPoint> places(const PlaneOfFrame &plane, int width)
{
    std::vector<int> rowOfX;
    for (int x = plane.firstX; x <= width; x += plane.pitch)
        rowOfX.push_back(x);
    std::vector<QPoint> list;
    for (int i = 0; i < plane.count; ++i) {
        const int perRow = static_cast<int>(rowOfX.size());
        list.emplace_back(rowOfX[i % perRow], plane.firstY + plane.pitch * (i / perRow));
    }
    return list;
}

/// The byte of a frame at this place; 0 behind the frame's end.
inline unsigned pixelAt(const QImage &image, const QPoint &place)
{
    const int offset = place.y() * image.width() + place.x();
    return offset < image.bytesPerLine() * image.height() ? image.constBits()[offset] : 0;
}

/// The averages of a plane's elements, in order.
inline std::vector<unsigned> averages(const QVector<QImage> &frames, const PlaneOfFrame &plane)
{
    std::vector<unsigned> list;
    const int width = frames.first().width();
    for (const QPoint &place : places(plane, width)) {
        unsigned sum = 0;
        for (const QImage &image : frames)
            sum += pixelAt(image, place);
        list.push_back(sum / static_cast<unsigned>(frames.size()));
    }
    return list;
}

/// Frames of which the first has 8 bits a pixel and the others have anything that can be read by bytes: few
/// or many, small or wide.
inline QVector<QImage> anyFrames(int smallest, QRandomGenerator *random)
{
    const QImage::Format formats[] = {
        QImage::Format_Indexed8, QImage::Format_Indexed8, QImage::Format_Indexed8, QImage::Format_Grayscale8,
        QImage::Format_Alpha8,   QImage::Format_RGB32,    QImage::Format_RGB16,    QImage::Format_RGB888,
        QImage::Format_Mono,     QImage::Format_MonoLSB};
    const bool allAlike = random->bounded(2) == 0;
    const bool wide = random->bounded(4) == 0;
    const bool many = random->bounded(12) == 0;
    const int width = random->bounded(smallest, wide ? 700 : 40);
    const int height = random->bounded(smallest, wide ? 9 : 40);
    QVector<QImage> frames{noise(width, height, random)};
    for (int left = many ? random->bounded(250, 300) : random->bounded(0, 14); left > 0; --left)
        frames.append(noise(width, height, random, formats[allAlike ? 0 : random->bounded(10)]));
    return frames;
}

} // namespace testframes
