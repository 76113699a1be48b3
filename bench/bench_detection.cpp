// SPDX-License-Identifier: MIT
// Finding hot pixels in ten frames, beside a walk that visits every element of the matrices with every frame,
// and beside reading the frames once.
#include "badpixellistmodel.h"
#include "hotpixeldetector.h"
#include "kelvocodes.h"
#include "pixeliterators.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <time.h>

namespace {

constexpr int FrameCount = 10;
constexpr std::uint32_t Threshold = 40;
constexpr int HotPixels = 300;

using Sums = Matrix<unsigned int>;

class MeanVisitor final : public Sums::Iterator
{
public:
    void operator()(unsigned int &value) override
    {
        sum += value;
        ++count;
    }

    std::uint32_t sum = 0;
    std::uint32_t count = 0;
};

class AddVisitor final : public BadpixelDetector::PixelPosIterator
{
public:
    AddVisitor(BadpixelListModel *targetModel, std::uint32_t highestGood)
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

/// The rule as it reads: a visitor for each step, a virtual call for each element, one plane and one frame
/// after the other.
class WalkedDetector final : public BadpixelDetector
{
public:
    void detect(BadpixelListModel *model) override
    {
        const QSize size = images->first().size();
        if (colorMode == kelvo::ColorModeMono8) {
            Sums matrix(static_cast<unsigned>(size.height()), static_cast<unsigned>(size.width()));
            fill(&matrix, monoLayout);
            report(&matrix, monoLayout, limitOf(&matrix), model);
            return;
        }
        for (std::unique_ptr<Plane> &matrix : planeMatrix)
            matrix = std::make_unique<Plane>(static_cast<unsigned>(size.height() / 2),
                                             static_cast<unsigned>(size.width() / 2));
        for (int plane = 0; plane < PlaneCount; ++plane)
            fill(planeMatrix[plane].get(), planeLayout[plane]);
        std::uint32_t limits[PlaneCount];
        for (int plane = 0; plane < PlaneCount; ++plane)
            limits[plane] = limitOf(planeMatrix[plane].get());
        for (int plane = 0; plane < PlaneCount; ++plane)
            report(planeMatrix[plane].get(), planeLayout[plane], limits[plane], model);
    }

private:
    // Hides the visitor's class from the compiler, as a walk in another file would.
    static void visit(Sums *matrix, Sums::Iterator &visitor)
    {
        Sums::Iterator *hidden = &visitor;
        benchmark::DoNotOptimize(hidden);
        matrix->forEach(*hidden);
    }

    void fill(Sums *matrix, const PlaneLayout &layout) const
    {
        CopyIterator copy;
        ImageIterator firstFrame(images->first(), layout, &copy);
        visit(matrix, firstFrame);
        SumIterator sum;
        for (int i = 1; i < images->size(); ++i) {
            ImageIterator furtherFrame(images->at(i), layout, &sum);
            visit(matrix, furtherFrame);
        }
        DivIterator average(static_cast<unsigned>(images->size()));
        visit(matrix, average);
    }

    std::uint32_t limitOf(Sums *matrix) const
    {
        MeanVisitor mean;
        visit(matrix, mean);
        return mean.sum / mean.count + threshold;
    }

    void report(Sums *matrix, const PlaneLayout &layout, std::uint32_t limit, BadpixelListModel *model) const
    {
        AddVisitor add(model, limit);
        ImagePosIterator positions(images->first(), layout, &add);
        visit(matrix, positions);
    }
};

/// Dark frames with noise, and hot pixels at the same places in each.
QVector<QImage> darkFrames(int width, int height)
{
    std::mt19937 random(1);
    QVector<QImage> frames;
    for (int i = 0; i < FrameCount; ++i) {
        QImage frame(width, height, QImage::Format_Indexed8);
        const std::size_t count = static_cast<std::size_t>(frame.bytesPerLine()) * height;
        uchar *bytes = frame.bits();
        std::generate_n(bytes, count, [&random] { return static_cast<uchar>(4 + (random() >> 28)); });
        for (std::size_t hot = 1; hot <= HotPixels; ++hot)
            bytes[hot * count / (HotPixels + 1)] = 200;
        frames.append(frame);
    }
    return frames;
}

std::uint64_t readOnce(const QVector<QImage> &frames)
{
    std::uint64_t sum = 0;
    for (const QImage &frame : frames) {
        const std::size_t words = static_cast<std::size_t>(frame.bytesPerLine()) * frame.height() / 8;
        const uchar *bytes = frame.constBits();
        for (std::size_t i = 0; i < words; ++i) {
            std::uint64_t word;
            std::memcpy(&word, bytes + 8 * i, sizeof word);
            sum += word;
        }
    }
    return sum;
}

template<typename Detector>
void find(int mode, const QVector<QImage> &frames, BadpixelListModel *found)
{
    Detector detector;
    detector.setThreshold(Threshold);
    detector.setImages(mode, &frames);
    detector.detect(found);
}

bool isSame(const BadpixelListModel &a, const BadpixelListModel &b)
{
    bool same = a.rowCount() == b.rowCount() && a.rowCount() > 0;
    for (int row = 0; same && row < a.rowCount(); ++row)
        same = a.badpixel(row).x == b.badpixel(row).x && a.badpixel(row).y == b.badpixel(row).y;
    return same;
}

/// Seconds that this thread worked for: other programs' turns do not count, the memory it was given does.
template<typename Work>
double timeOf(Work work)
{
    const auto now = [] {
        timespec time;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

/// The columns are the shortest times of the iterations, and what they are to each other.
void detect(benchmark::State &state, int mode, int width, int height)
{
    const QVector<QImage> frames = darkFrames(width, height);
    double read = std::numeric_limits<double>::max();
    double walk = read;
    double ours = read;
    for (auto _ : state) {
        BadpixelListModel walked;
        BadpixelListModel found;
        read = std::min(read, timeOf([&] { benchmark::DoNotOptimize(readOnce(frames)); }));
        walk = std::min(walk, timeOf([&] { find<WalkedDetector>(mode, frames, &walked); }));
        const double time = timeOf([&] { find<HotpixelDetector>(mode, frames, &found); });
        ours = std::min(ours, time);
        state.SetIterationTime(time);
        if (!isSame(walked, found)) {
            state.SkipWithError("the lists differ");
            break;
        }
    }
    state.counters["read_ms"] = read * 1e3;
    state.counters["walk_ms"] = walk * 1e3;
    state.counters["ours_ms"] = ours * 1e3;
    state.counters["walk/ours"] = walk / ours;
    state.counters["ours/read"] = ours / read;
}

void enough(benchmark::internal::Benchmark *benchmark)
{
    benchmark->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK_CAPTURE(detect, mono_5MP, kelvo::ColorModeMono8, 2560, 1920)->Apply(enough);
BENCHMARK_CAPTURE(detect, mono_12MP, kelvo::ColorModeMono8, 4096, 3000)->Apply(enough);
BENCHMARK_CAPTURE(detect, mono_20MP, kelvo::ColorModeMono8, 5472, 3648)->Apply(enough);
BENCHMARK_CAPTURE(detect, bayer_5MP, kelvo::ColorModeRawBayer8, 2560, 1920)->Apply(enough);
BENCHMARK_CAPTURE(detect, bayer_12MP, kelvo::ColorModeRawBayer8, 4096, 3000)->Apply(enough);
BENCHMARK_CAPTURE(detect, bayer_20MP, kelvo::ColorModeRawBayer8, 5472, 3648)->Apply(enough);

BENCHMARK_MAIN();
