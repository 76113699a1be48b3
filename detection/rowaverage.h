// SPDX-License-Identifier: MIT
// The arithmetic of averaging, a row of all frames at a time.
#pragma once

#include <QImage>
#include <QVector>

#include <cstddef>
#include <cstdint>
#include <vector>

/// Divides sums of up to 257 bytes by their number, rounding down, with a multiplication and a shift, which
/// work on several numbers at once on every processor.
///
/// With f = 2^24 / n, rounded up, f * n is at most n - 1 more than 2^24. So s * f / 2^24 exceeds s / n by
/// less than 1 / n, too little to reach the next whole number, as long as s * (n - 1) < 2^24. A sum of n
/// bytes keeps to that up to n = 257, up to where it fits in 16 bits too, and s * f in 32.
class ByteAverage final
{
public:
    static constexpr int MostBytes = 257;

    /// @param count 1 to MostBytes
    explicit ByteAverage(int count)
        : factor((One + static_cast<std::uint32_t>(count) - 1) / static_cast<std::uint32_t>(count))
    {
    }

    /// @param sum at most 255 times the count
    std::uint32_t of(std::uint16_t sum) const { return sum * factor >> Shift; }

private:
    static constexpr int Shift = 24;
    static constexpr std::uint32_t One = std::uint32_t(1) << Shift;

    std::uint32_t factor;
};

/// What is to be known of a row of averages, noticed while they are at hand: reading them all again takes as
/// long.
struct RowSummary
{
    std::uint32_t sum = 0; // wraps, as sums of whole planes do
    unsigned int highest = 0;
};

RowSummary summaryOf(const unsigned int *averages, int count);

/// Averages bytes that lie at the same place of several frames. Borrows the frames' pixels.
class RowAverage final
{
public:
    /// @param frames 1 to ByteAverage::MostBytes
    /// @param longestRow the most bytes that are asked for at a time
    RowAverage(const QVector<QImage> &frames, int longestRow);

    /// Adds up `count` bytes from `offset` on, which every frame must have.
    void read(std::size_t offset, int count);

    /// Writes `count` averages of the bytes read last: of the `first` one and each `step` (1 or 2) further.
    RowSummary write(int first, int step, int count, unsigned int *averages) const;

private:
    std::vector<const uchar *> pixels;
    std::vector<std::uint16_t> sums;
    ByteAverage average;
};
