// SPDX-License-Identifier: MIT
// The arithmetic of averaging, a row of all frames at a time.
//
// The loops are plain enough for the compiler to make vector code of, for any processor.
#include "rowaverage.h"

#include <algorithm>

namespace {

// Frames that are added in one go, so that the sums are loaded and stored once for all of them. A run has
// ten.
constexpr std::size_t Together = 5;

template<std::size_t Frames>
void add(const uchar *const *pixels, std::size_t offset, int count, std::uint16_t *sums)
{
    const uchar *rows[Frames];
    for (std::size_t frame = 0; frame < Frames; ++frame)
        rows[frame] = pixels[frame] + offset;
    for (int i = 0; i < count; ++i) {
        unsigned sum = sums[i];
        for (std::size_t frame = 0; frame < Frames; ++frame)
            sum += rows[frame][i];
        sums[i] = static_cast<std::uint16_t>(sum);
    }
}

void include(unsigned int value, RowSummary &summary)
{
    summary.sum += value;
    summary.highest = std::max(summary.highest, value);
}

template<int Step>
RowSummary divide(const std::uint16_t *sums, int count, ByteAverage average, unsigned int *averages)
{
    RowSummary summary;
    for (int i = 0; i < count; ++i) {
        averages[i] = average.of(sums[std::ptrdiff_t(i) * Step]);
        include(averages[i], summary);
    }
    return summary;
}

} // namespace

RowSummary summaryOf(const unsigned int *averages, int count)
{
    RowSummary summary;
    for (int i = 0; i < count; ++i)
        include(averages[i], summary);
    return summary;
}

RowAverage::RowAverage(const QVector<QImage> &frames, int longestRow)
    : sums(static_cast<std::size_t>(longestRow))
    , average(frames.size())
{
    for (const QImage &frame : frames)
        pixels.push_back(frame.constBits());
}

void RowAverage::read(std::size_t offset, int count)
{
    std::fill_n(sums.begin(), count, std::uint16_t(0));
    std::size_t frame = 0;
    for (; frame + Together <= pixels.size(); frame += Together)
        add<Together>(&pixels[frame], offset, count, sums.data());
    for (; frame < pixels.size(); ++frame)
        add<1>(&pixels[frame], offset, count, sums.data());
}

RowSummary RowAverage::write(int first, int step, int count, unsigned int *averages) const
{
    const std::uint16_t *from = &sums[static_cast<std::size_t>(first)];
    return step == 1 ? divide<1>(from, count, average, averages) : divide<2>(from, count, average, averages);
}
