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
inline QImage noise(int width, int height, QRandomGenerator *random)
{
    QImage image(width, height, QImage::Format_Indexed8);
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

/// The averages of a plane's elements, in order.
inline std::vector<unsigned> averages(const QVector<QImage> &frames, const PlaneOfFrame &plane)
{
    std::vector<unsigned> list;
    const int width = frames.first().width();
    for (const QPoint &place : places(plane, width)) {
        unsigned sum = 0;
        for (const QImage &image : frames)
            sum += image.constBits()[place.y() * width + place.x()];
        list.push_back(sum / static_cast<unsigned>(frames.size()));
    }
    return list;
}

} // namespace testframes
