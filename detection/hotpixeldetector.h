// SPDX-License-Identifier: MIT
// Finds hot pixels: those that read bright in the average of dark frames.
#pragma once

#include "badpixeldetector.h"

/// Reports every pixel whose average lies more than the threshold above the mean of its colour plane.
class HotpixelDetector final : public BadpixelDetector
{
    Q_OBJECT

public:
    class MeanIterator;
    class AddHotpixelIterator;

    explicit HotpixelDetector(QObject *parent = nullptr);

    /// Averages the frames and adds the hot pixels to the model as user entries: plane by plane, and in each
    /// row by row. Entries added before a failure stay.
    /// @throws what accumulate() throws, and std::runtime_error "Not instanced." when a matrix is missing
    void detect(BadpixelListModel *model) override;

    /// The mean grey value of the averaged monochrome frame, rounded down.
    /// @throws std::runtime_error "Not instanced." when there is none
    unsigned int meanValue() const;

private:
    void detectMono(BadpixelListModel *model);
    void detectPlanes(BadpixelListModel *model);
    void report(Plane *matrix, const PlaneLayout &layout, const std::vector<RowSummary> &rows,
                std::uint32_t limit, BadpixelListModel *model) const;
};
