// SPDX-License-Identifier: MIT
// Finds hot pixels: those that read bright in the average of dark frames.
#include "hotpixeldetector.h"

#include "badpixellistmodel.h"
#include "kelvocodes.h"
#include "pixeliterators.h"

/// Averages the elements that it visits; of none there is no mean.
class HotpixelDetector::MeanIterator final : public Matrix<unsigned int>::Iterator
{
public:
    void operator()(unsigned int &value) override
    {
        sum += value;
        ++count;
    }

    std::uint32_t mean() const { return sum / count; }

private:
    std::uint32_t sum = 0;
    std::uint32_t count = 0;
};

/// Adds the places of elements above the limit to a model.
class HotpixelDetector::AddHotpixelIterator final : public BadpixelDetector::PixelPosIterator
{
public:
    AddHotpixelIterator(BadpixelListModel *targetModel, std::uint32_t highestGood)
        : model(targetModel)
        , limit(highestGood)
    {
    }

    void operator()(unsigned int &value, int x, int y) override
    {
        if (value > limit)
            model->addBadpixel(QPoint(x, y));
    }

private:
    BadpixelListModel *model;
    std::uint32_t limit;
};

HotpixelDetector::HotpixelDetector(QObject *parent)
    : BadpixelDetector(parent)
{
}

void HotpixelDetector::detect(BadpixelListModel *model)
{
    accumulate();
    switch (colorMode) {
    case kelvo::ColorModeMono8:
        detectMono(model);
        break;
    case kelvo::ColorModeRawBayer8:
        detectPlanes(model);
        break;
    default:
        throw ErrColorMode();
    }
    emit detectionFinished();
}

unsigned int HotpixelDetector::meanValue() const
{
    return meanOf(monoMatrix);
}

void HotpixelDetector::detectMono(BadpixelListModel *model)
{
    report(monoMatrix.get(), monoLayout, meanOf(monoMatrix) + threshold, model);
}

void HotpixelDetector::detectPlanes(BadpixelListModel *model)
{
    std::uint32_t limits[PlaneCount];
    for (int plane = 0; plane < PlaneCount; ++plane)
        limits[plane] = meanOf(planeMatrix[plane]) + threshold;
    for (int plane = 0; plane < PlaneCount; ++plane)
        report(planeMatrix[plane].get(), planeLayout[plane], limits[plane], model);
}

std::uint32_t HotpixelDetector::meanOf(const std::unique_ptr<Plane> &matrix)
{
    if (!matrix)
        throw std::runtime_error("Not instanced.");
    MeanIterator mean;
    matrix->forEach(mean);
    return mean.mean();
}

void HotpixelDetector::report(Plane *matrix, const PlaneLayout &layout, std::uint32_t limit,
                              BadpixelListModel *model) const
{
    AddHotpixelIterator addHotpixel(model, limit);
    ImagePosIterator positions(images->first(), layout, &addHotpixel);
    matrix->forEach(positions);
}
