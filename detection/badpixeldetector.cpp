// SPDX-License-Identifier: MIT
// What every detector of bad pixels starts with: the frames, averaged pixel by pixel.
#include "badpixeldetector.h"

#include "kelvocodes.h"
#include "pixeliterators.h"
#include "walkedrows.h"

#include <algorithm>
#include <cstdlib>

BadpixelDetector::BadpixelDetector(QObject *parent)
    : QObject(parent)
    , colorMode(kelvo::ColorModeRawBayer8)
    , monoLayout{0, 0, 1, 1}
    , planeLayout{{0, 0, 2, 2}, {0, 1, 2, 2}, {1, 0, 2, 2}, {1, 1, 2, 2}}
{
}

BadpixelDetector::~BadpixelDetector() = default;

void BadpixelDetector::setImages(int mode, const QVector<QImage> *frames)
{
    colorMode = mode;
    images = frames;
}

void BadpixelDetector::accumulate()
{
    try {
        checkFrames();
        switch (colorMode) {
        case kelvo::ColorModeMono8:
            averageMono();
            break;
        case kelvo::ColorModeRawBayer8:
            averagePlanes();
            break;
        default:
            throw ErrColorMode();
        }
    } catch (...) {
        emit detectionFinished();
        throw;
    }
}

// Kept: the format of the first frame alone decides; of the others the size is looked at.
void BadpixelDetector::checkFrames() const
{
    if (!images || images->isEmpty())
        throw std::runtime_error("No images acquired for hot pixel detection.");
    if (images->first().format() != QImage::Format_Indexed8)
        throw std::runtime_error("Image format for hot pixel detection not supported.");
}

void BadpixelDetector::averageMono()
{
    const QSize size = images->first().size();
    monoMatrix.reset();
    monoMatrix = std::make_unique<Plane>(static_cast<unsigned>(std::abs(size.height())),
                                         static_cast<unsigned>(std::abs(size.width())));
    fill({{monoMatrix.get(), &monoLayout, &monoRows}});
}

/// An odd last row or column belongs to no plane.
void BadpixelDetector::averagePlanes()
{
    const QSize size = images->first().size();
    for (std::unique_ptr<Plane> &matrix : planeMatrix) {
        matrix.reset();
        matrix = std::make_unique<Plane>(static_cast<unsigned>(size.height() / 2),
                                         static_cast<unsigned>(size.width() / 2));
    }
    std::vector<Target> planes(PlaneCount);
    for (std::size_t plane = 0; plane < PlaneCount; ++plane)
        planes[plane] = {planeMatrix[plane].get(), &planeLayout[plane], &planeRows[plane]};
    fill(planes);
}

void BadpixelDetector::fill(const std::vector<Target> &planes) const
{
    for (const Target &plane : planes)
        plane.rows->clear();
    if (canReadRows()) {
        fillByRows(planes);
        return;
    }
    for (const Target &plane : planes)
        fillByFrames(plane);
}

/// Whether every frame has a byte for each pixel of the first one, and there are not too many to add up.
bool BadpixelDetector::canReadRows() const
{
    const QSize size = images->first().size();
    const auto hasAllPixels = [&size](const QImage &frame) {
        return frame.size() == size && frame.bytesPerLine() >= size.width();
    };
    return images->size() <= ByteAverage::MostBytes &&
           std::all_of(images->begin(), images->end(), hasAllPixels);
}

/// The fast way: each row of all frames is read once, and the planes take what is theirs.
void BadpixelDetector::fillByRows(const std::vector<Target> &planes) const
{
    const std::size_t width = static_cast<std::size_t>(images->first().width());
    const std::size_t end = width * static_cast<std::size_t>(images->first().height());
    std::vector<WalkedRows> walks;
    walks.reserve(planes.size());
    for (const Target &plane : planes)
        walks.emplace_back(plane.matrix, *plane.layout, images->first().width());
    RowAverage average(*images, images->first().width() + 1);
    for (int y = 0; y < images->first().height(); ++y) {
        const std::size_t offset = width * static_cast<std::size_t>(y);
        average.read(offset, static_cast<int>(std::min(width + 1, end - offset)));
        for (std::size_t i = 0; i < planes.size(); ++i) {
            if (!walks[i].isAt(y))
                continue;
            planes[i].rows->push_back(
                average.write(walks[i].x(), walks[i].stepX(), walks[i].count(), walks[i].elements()));
            walks[i].next();
        }
    }
}

/// The plain way, for frames of any kind and number: one after the other, element by element.
void BadpixelDetector::fillByFrames(const Target &plane) const
{
    CopyIterator copy;
    ImageIterator firstFrame(images->first(), *plane.layout, &copy);
    plane.matrix->forEach(firstFrame);
    SumIterator sum;
    for (int i = 1; i < images->size(); ++i) {
        const QImage &frame = images->at(i);
        if (frame.size() != images->first().size())
            throw std::runtime_error("Aqcuired images are not the same size.");
        ImageIterator furtherFrame(frame, *plane.layout, &sum);
        plane.matrix->forEach(furtherFrame);
    }
    DivIterator average(static_cast<unsigned>(images->size()));
    plane.matrix->forEach(average);
    for (WalkedRows row(plane.matrix, *plane.layout, images->first().width()); !row.atEnd(); row.next())
        plane.rows->push_back(summaryOf(row.elements(), row.count()));
}
