// SPDX-License-Identifier: MIT
// What every detector of bad pixels starts with: the frames, averaged pixel by pixel.
#include "badpixeldetector.h"

#include "kelvocodes.h"
#include "pixeliterators.h"

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
    fill(monoMatrix.get(), monoLayout);
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
    for (int plane = 0; plane < PlaneCount; ++plane)
        fill(planeMatrix[plane].get(), planeLayout[plane]);
}

void BadpixelDetector::fill(Plane *matrix, const PlaneLayout &layout) const
{
    CopyIterator copy;
    ImageIterator firstFrame(images->first(), layout, &copy);
    matrix->forEach(firstFrame);
    SumIterator sum;
    for (int i = 1; i < images->size(); ++i) {
        const QImage &frame = images->at(i);
        if (frame.size() != images->first().size())
            throw std::runtime_error("Aqcuired images are not the same size.");
        ImageIterator furtherFrame(frame, layout, &sum);
        matrix->forEach(furtherFrame);
    }
    DivIterator average(static_cast<unsigned>(images->size()));
    matrix->forEach(average);
}
