// SPDX-License-Identifier: MIT
// Finds hot pixels: those that read bright in the average of dark frames.
#include "hotpixeldetector.h"

#include "badpixellistmodel.h"
#include "kelvocodes.h"
#include "pixeliterators.h"
#include "walkedrows.h"

#include <numeric>

namespace {

using Plane = Matrix<unsigned int>;

Plane &instance(const std::unique_ptr<Plane> &matrix)
{
    if (!matrix)
        throw std::runtime_error("Not instanced.");
    return *matrix;
}

/// What a MeanIterator finds in the matrix, from the sums of its rows.
std::uint32_t meanOf(Plane &matrix, const std::vector<RowSummary> &rows)
{
    const auto add = [](std::uint32_t sum, const RowSummary &row) { return sum + row.sum; };
    const auto count = static_cast<std::uint32_t>(matrix.end() - matrix.begin());
    return std::accumulate(rows.begin(), rows.end(), std::uint32_t(0), add) / count;
}

} // namespace

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
    MeanIterator mean;
    instance(monoMatrix).forEach(mean);
    return mean.mean();
}

void HotpixelDetector::detectMono(BadpixelListModel *model)
{
    const std::uint32_t limit = meanOf(instance(monoMatrix), monoRows) + threshold;
    report(monoMatrix.get(), monoLayout, monoRows, limit, model);
}

void HotpixelDetector::detectPlanes(BadpixelListModel *model)
{
    std::uint32_t limits[PlaneCount];
    for (int plane = 0; plane < PlaneCount; ++plane)
        limits[plane] = meanOf(instance(planeMatrix[plane]), planeRows[plane]) + threshold;
    for (int plane = 0; plane < PlaneCount; ++plane)
        report(planeMatrix[plane].get(), planeLayout[plane], planeRows[plane], limits[plane], model);
}

/// Visits the rows in which there is something to find.
void HotpixelDetector::report(Plane *matrix, const PlaneLayout &layout, const std::vector<RowSummary> &rows,
                              std::uint32_t limit, BadpixelListModel *model) const
{
    AddHotpixelIterator addHotpixel(model, limit);
    auto row = rows.begin();
    for (WalkedRows walk(matrix, layout, images->first().width()); !walk.atEnd(); walk.next(), ++row) {
        for (int i = 0; row->highest > limit && i < walk.count(); ++i)
            addHotpixel(walk.elements()[i], walk.x() + i * walk.stepX(), walk.y());
    }
}
