// SPDX-License-Identifier: MIT
// Asks Qt once what it takes, and takes the same from then on.

#include "sampling.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <numeric>

namespace {

constexpr QRgb Opaque = 0xff000000u;

// Up to which Qt's painter draws.
constexpr int LargestCoordinate = 32767;

QRgb inColour(uchar grey)
{
    return Opaque | QRgb(grey) << 16 | QRgb(grey) << 8 | grey;
}

QRgb inColour(QRgb colour)
{
    return colour;
}

/// What the plain proportion takes.
std::vector<int> pixelsInProportion(int from, int to)
{
    std::vector<int> taken(static_cast<std::size_t>(to));
    for (int place = 0; place < to; ++place)
        taken[static_cast<std::size_t>(place)] = static_cast<int>(static_cast<qint64>(place) * from / to);
    return taken;
}

/// A row of pixels of which each tells its place.
QImage ramp(int pixels)
{
    QImage row(pixels, 1, QImage::Format_RGB32);
    QRgb *places = reinterpret_cast<QRgb *>(row.bits());
    std::iota(places, places + pixels, Opaque);
    return row;
}

/// Qt steps along a side in fixed-point numbers, so what it takes strays from the plain proportion, and not
/// in all versions alike. What lies beyond its largest coordinate it leaves black.
std::vector<int> pixelsThatQtTakes(int from, int to)
{
    if (std::max(from, to) > LargestCoordinate)
        return pixelsInProportion(from, to);
    const QImage scaled = ramp(from).scaled(to, 1, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    std::vector<int> taken(static_cast<std::size_t>(to));
    const QRgb *places = reinterpret_cast<const QRgb *>(scaled.constBits());
    std::transform(places, places + to, taken.begin(),
                   [](QRgb place) { return static_cast<int>(place & ~Opaque); });
    return taken;
}

/// For each pixel, and for the one behind the last, the number of places that show pixels before it.
std::vector<int> firstPlaces(int pixels, const std::vector<int> &shown)
{
    std::vector<int> places(static_cast<std::size_t>(pixels) + 1);
    for (int pixel : shown)
        ++places[static_cast<std::size_t>(pixel) + 1];
    std::partial_sum(places.begin(), places.end(), places.begin());
    return places;
}

std::vector<int> countedUp(int count)
{
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

template<typename Pixel>
void scaleRow(QRgb *scaled, const Pixel *row, const SideSampling &columns)
{
    const int *pixels = columns.pixels();
    for (int place = 0; place < columns.to(); ++place)
        scaled[place] = inColour(row[pixels[place]]);
}

template<typename Pixel>
void copyRow(QRgb *copy, const Pixel *row, int pixels)
{
    for (int x = 0; x < pixels; ++x)
        copy[x] = inColour(row[x]);
}

template<typename Pixel>
void scaleRows(QImage &scaled, const QImage &picture, const Sampling &sampling)
{
    const SideSampling &columns = sampling.columns;
    const SideSampling &rows = sampling.rows;
    const QRgb *before = nullptr;
    for (int place = 0; place < rows.to(); ++place) {
        QRgb *line = reinterpret_cast<QRgb *>(scaled.scanLine(place));
        const Pixel *row = reinterpret_cast<const Pixel *>(picture.constScanLine(rows.pixel(place)));
        if (place > rows.begin(rows.pixel(place)))
            std::copy_n(before, columns.to(), line);
        else if (columns.to() == columns.from())
            copyRow(line, row, columns.to());
        else
            scaleRow(line, row, columns);
        before = line;
    }
}

/// Whether a frame is kept as it is.
bool isPlain(const QImage &frame)
{
    return frame.format() == QImage::Format_RGB32 ||
           (frame.format() == QImage::Format_Indexed8 && frame.colorCount() == 0);
}

/// Between images of one size and format, whose rows may be padded differently.
void copyPixels(const QImage &from, QImage &to)
{
    const auto rowBytes = static_cast<std::size_t>(from.width()) * static_cast<std::size_t>(from.depth() / 8);
    for (int y = 0; y < from.height(); ++y)
        std::memcpy(to.scanLine(y), from.constScanLine(y), rowBytes);
}

} // namespace

SideSampling::SideSampling(int from, int to)
    : shown(from == to ? countedUp(to) : pixelsThatQtTakes(from, to))
    , first(from == to ? countedUp(to + 1) : firstPlaces(from, shown))
{
}

Sampling::Sampling(const QSize &from, const QSize &to)
    : columns(from.width(), to.width())
    , rows(from.height(), to.height())
{
}

void keepFrame(QImage &kept, const QImage &frame)
{
    if (!isPlain(frame))
        kept = frame.convertToFormat(QImage::Format_RGB32);
    else if (kept.size() == frame.size() && kept.format() == frame.format())
        copyPixels(frame, kept);
    else
        kept = frame.copy(); // assigning would share the camera's buffer, which is gone after the call
}

void scaleInto(QImage &scaled, const QImage &picture, const Sampling &sampling)
{
    if (picture.format() == QImage::Format_RGB32)
        scaleRows<QRgb>(scaled, picture, sampling);
    else
        scaleRows<uchar>(scaled, picture, sampling);
}

bool ScaledPicture::makeRoom(const QSize &from, const QSize &to)
{
    if (pixels.size() != to || !pixels.isDetached())
        pixels = QImage(to, QImage::Format_RGB32);
    if (pixels.isNull())
        return false;
    if (sampling.from() != from || sampling.to() != to)
        sampling = Sampling(from, to);
    return true;
}
