// SPDX-License-Identifier: MIT
// What every detector of bad pixels starts with: the frames, averaged pixel by pixel.
#pragma once

#include "matrix.h"
#include "pixelwalk.h"
#include "rowaverage.h"

#include <QImage>
#include <QObject>
#include <QVector>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

class BadpixelListModel;

/// Averages a series of equal-sized 8-bit frames: mono frames in one matrix, raw Bayer frames in four, one
/// for each position of the 2 x 2 pattern. Works on the thread that calls it; one detector serves one run.
class BadpixelDetector : public QObject
{
    Q_OBJECT

public:
    /// The frames come in a colour mode that no detector understands.
    class ErrColorMode final : public std::runtime_error
    {
    public:
        ErrColorMode()
            : std::runtime_error("Color mode for hot pixel detection not supported.")
        {
        }
    };

    /// Receives matrix elements together with pixels of a frame.
    class PixelValIterator;
    /// Receives matrix elements together with image coordinates.
    class PixelPosIterator;
    class ImageIterator;
    class ImagePosIterator;
    class DivIterator;
    class CopyIterator;
    class SumIterator;

    explicit BadpixelDetector(QObject *parent = nullptr);
    ~BadpixelDetector() override;

    /// Takes the camera's colour mode (6 mono, 11 raw Bayer) and borrows the frames, which must live as long
    /// as detection runs.
    void setImages(int mode, const QVector<QImage> *frames);

    /// How far above the mean a pixel must read to be reported, in grey values of the 8-bit frames.
    void setThreshold(std::uint32_t value) { threshold = value; }

    /// Adds what is found to `model`, in image pixels.
    /// @throws std::runtime_error, std::length_error
    virtual void detect(BadpixelListModel *model) = 0;

signals:
    /// Detection ended well, or the frames could not be averaged.
    void detectionFinished();

protected:
    using Plane = Matrix<unsigned int>;
    static constexpr int PlaneCount = 4;

    /// Fills the matrices with the average of the frames, rounded down.
    /// @throws std::runtime_error when there are no frames or unfit ones, ErrColorMode, std::length_error
    /// when a plane has no pixels; detectionFinished() was emitted before
    void accumulate();

    int colorMode;
    const QVector<QImage> *images = nullptr; // borrowed
    std::unique_ptr<Plane> monoMatrix;
    std::unique_ptr<Plane> planeMatrix[PlaneCount];
    /// Of each row of a matrix' walk, in order.
    std::vector<RowSummary> monoRows;
    std::vector<RowSummary> planeRows[PlaneCount];
    const PlaneLayout monoLayout;
    const PlaneLayout planeLayout[PlaneCount];
    std::uint32_t threshold = 0;

private:
    /// A matrix to fill, with what belongs to it.
    struct Target
    {
        Plane *matrix;
        const PlaneLayout *layout;
        std::vector<RowSummary> *rows;
    };

    void checkFrames() const;
    void averageMono();
    void averagePlanes();
    void fill(const std::vector<Target> &planes) const;
    bool canReadRows() const;
    void fillByRows(const std::vector<Target> &planes) const;
    void fillByFrames(const Target &plane) const;
};
