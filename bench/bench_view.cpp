// SPDX-License-Identifier: MIT
// Showing a frame in the image view, beside the plainest way to do so and beside the memory traffic that none
// can do without.
#include "displaywidget.h"

#include "view/plainview.h"

#include <QApplication>
#include <QLabel>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

// Every allocation of the process passes here: Qt's pictures and lists do not come from operator new.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
}

namespace {
long allocations = 0;
long allocatedBytes = 0;

void count(std::size_t size)
{
    ++allocations;
    allocatedBytes += static_cast<long>(size);
}
} // namespace

extern "C" {
void *malloc(std::size_t size)
{
    count(size);
    return __libc_malloc(size);
}

void *calloc(std::size_t number, std::size_t size)
{
    count(number * size);
    return __libc_calloc(number, size);
}

void *realloc(void *block, std::size_t size)
{
    count(size);
    return __libc_realloc(block, size);
}
}

namespace {

constexpr double Million = 1e6;
const QSize ViewSize(1282, 962);
const QSize Room = ViewSize - QSize(2, 2);

QSize frameSize(int megapixels)
{
    return megapixels == 5 ? QSize(2592, 1944) : QSize(5472, 3648);
}

QImage noiseFrame(const QSize &size)
{
    QImage frame(size, QImage::Format_Indexed8);
    std::mt19937 random(1);
    for (int y = 0; y < size.height(); ++y)
        std::generate_n(frame.scanLine(y), size.width(), [&random] { return static_cast<uchar>(random()); });
    return frame;
}

// Entries all over the frame in no order, every third the factory's.
void fill(BadpixelListModel &list, int entries, const QSize &size)
{
    std::mt19937 random(2);
    while (list.rowCount() < entries) {
        const unsigned place = random() % static_cast<unsigned>(size.width() * size.height());
        const int at = static_cast<int>(place);
        list.addBadpixel(QPoint(at % size.width(), at / size.width()));
    }
    for (int row = 0; row < entries; row += 3)
        list.setData(list.index(row, 2), QStringLiteral("factory"));
}

// Processor time of all threads: what else the machine does is not in it.
double millisecondsOf(const std::function<void()> &work)
{
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) * 1000.0 / CLOCKS_PER_SEC;
}

// The least time of several rounds, and what the last of them allocated.
struct Cost
{
    void measure(const std::function<void()> &work)
    {
        const long before = allocations;
        const long bytesBefore = allocatedBytes;
        milliseconds = std::min(milliseconds, millisecondsOf(work));
        calls = allocations - before;
        bytes = allocatedBytes - bytesBefore;
    }

    double milliseconds = std::numeric_limits<double>::max();
    long calls = 0;
    long bytes = 0;
};

// The traffic that is left when nothing is done twice: the frame is kept; one of its pixels is read for each
// pixel shown, or each once where they grow; the picture is written; the squares of the circles are changed.
class Floor final
{
public:
    Floor(const QImage &newFrame, const QSize &shown, const BadpixelListModel &list)
        : frame(newFrame)
        , kept(frame.size(), frame.format())
        , picture(shown, QImage::Format_RGB32)
        , step(std::max(1, frame.width() / shown.width()))
        , sampled(std::min(frame.width() / step, shown.width()))
        , entries(list)
    {
    }

    void keepFrame()
    {
        std::memcpy(kept.bits(), frame.constBits(), static_cast<std::size_t>(frame.sizeInBytes()));
    }

    void draw()
    {
        QRgb *pixels = reinterpret_cast<QRgb *>(picture.bits());
        for (int y = 0; y < picture.height(); ++y)
            writeRow(pixels + static_cast<qint64>(y) * picture.width(), rowFor(y));
        for (int row = 0; row < entries.rowCount(); ++row)
            changeSquare(pixels, entries.badpixel(row));
        benchmark::DoNotOptimize(pixels);
        benchmark::ClobberMemory();
    }

private:
    int squareSide() const { return std::max(1, 9 / step); }

    const uchar *rowFor(int y) const
    {
        const qint64 row = static_cast<qint64>(y) * kept.height() / picture.height();
        return kept.constScanLine(static_cast<int>(row));
    }

    void writeRow(QRgb *line, const uchar *row) const
    {
        if (step == 1)
            std::copy(row, row + sampled, line);
        for (int x = 0; step > 1 && x < sampled; ++x)
            line[x] = row[x * step];
        std::fill(line + sampled, line + picture.width(), 0);
    }

    // Circles are drawn before the picture grows, so a growing one has them at their own size.
    void changeSquare(QRgb *pixels, const Badpixel &entry) const
    {
        const int side = squareSide();
        const int left = std::min(entry.x / step, picture.width() - side);
        const int top = std::min(entry.y / step, picture.height() - side);
        for (int y = top; y < top + side; ++y) {
            QRgb *line = pixels + static_cast<qint64>(y) * picture.width() + left;
            std::for_each(line, line + side, [](QRgb &pixel) { pixel ^= 0xff; });
        }
    }

    QImage frame;
    QImage kept;
    QImage picture;
    int step;    // from one pixel that is read to the next
    int sampled; // pixels of a row
    const BadpixelListModel &entries;
};

// Bytes that redrawing reads and writes, estimated from the sizes alone: each picture on the way is written
// and read once, each circle changes its square.
class Traffic final
{
public:
    Traffic(const QSize &frame, const QSize &shown, int entries)
        : framePixels(pixelsOf(frame))
        , shownPixels(pixelsOf(shown))
        , circlePixels(81.0 * entries)
        , sampledPixels(std::min(framePixels, shownPixels))
    {
    }

    // What is needed: the frame's pixels that stay, the circles as small as they come, the picture.
    double floor() const
    {
        return sampledPixels + 2 * Colour * circlePixels * sampledPixels / framePixels + Colour * shownPixels;
    }

    // Enlarging takes the way through an unscaled picture.
    double real() const { return floor() + (shownPixels > framePixels ? 2 * Colour * framePixels : 0.0); }

    double plain() const
    {
        const double drawn = framePixels + Colour * framePixels + 2 * Colour * circlePixels;
        return shownPixels == framePixels ? drawn : drawn + Colour * (sampledPixels + shownPixels);
    }

private:
    static double pixelsOf(const QSize &size) { return static_cast<double>(size.width()) * size.height(); }

    static constexpr double Colour = sizeof(QRgb); // a grey pixel takes 1

    double framePixels;
    double shownPixels;
    double circlePixels;
    double sampledPixels;
};

// The real view and the plain one over the same list.
struct Views
{
    Views(const BadpixelListModel &entries, double scale)
    {
        auto *list = const_cast<BadpixelListModel *>(&entries); // the views only read it
        real.resize(ViewSize);
        real.setListModel(list);
        real.setHighlight(true);
        real.setScale(scale);
        real.updateMagnifierPosition(QPoint(100, 100));
        plain.room = Room;
        plain.list = list;
        plain.highlight = true;
        plain.scale = scale;
        plain.magnifierPosition = QPoint(100, 100);
    }

    QSize shownSize() const { return shown(plain.shownIn()).size(); }

    bool lookTheSame() const
    {
        return shown(plain.shownIn()) == shown(*qobject_cast<const QLabel *>(real.widget()));
    }

    static QImage shown(const QLabel &label) { return label.pixmap(Qt::ReturnByValue).toImage(); }

    DisplayWidget real;
    PlainView plain;
};

double scaleOf(int percent)
{
    return percent / 100.0;
}

// Times are the least of all rounds, in milliseconds: "redraw" is redrawImage() alone, "frame" a whole
// setImage(). "floor" is the memory traffic that nobody can do without. "calls" counts the allocations of a
// frame and "asked" their megabytes; "touched" is the estimated megabytes that redrawing reads and writes.
void show(benchmark::State &state)
{
    const QImage frame = noiseFrame(frameSize(static_cast<int>(state.range(0))));
    BadpixelListModel list;
    fill(list, static_cast<int>(state.range(2)), frame.size());
    Views views(list, scaleOf(static_cast<int>(state.range(1))));
    views.real.setImage(frame);
    views.plain.setImage(frame);
    if (!views.lookTheSame()) {
        state.SkipWithError("the views differ");
        return;
    }
    Floor floor(frame, views.shownSize(), list);
    Cost realFrame, realRedraw, plainFrame, plainRedraw, floorKeep, floorDraw;
    for (auto _ : state) {
        realFrame.measure([&] { views.real.setImage(frame); });
        realRedraw.measure([&] { views.real.redrawImage(); });
        plainFrame.measure([&] { views.plain.setImage(frame); });
        plainRedraw.measure([&] { views.plain.redrawImage(); });
        floorKeep.measure([&] { floor.keepFrame(); });
        floorDraw.measure([&] { floor.draw(); });
        state.SetIterationTime(realRedraw.milliseconds / 1000.0);
    }
    state.counters["redraw"] = realRedraw.milliseconds;
    state.counters["plain/redraw"] = plainRedraw.milliseconds / realRedraw.milliseconds;
    state.counters["plain/floor"] = plainRedraw.milliseconds / floorDraw.milliseconds;
    state.counters["redraw/floor"] = realRedraw.milliseconds / floorDraw.milliseconds;
    state.counters["frame"] = realFrame.milliseconds;
    state.counters["plain/frame"] = plainFrame.milliseconds / realFrame.milliseconds;
    state.counters["frame/floor"] =
        realFrame.milliseconds / (floorKeep.milliseconds + floorDraw.milliseconds);
    state.counters["calls"] = static_cast<double>(realFrame.calls);
    state.counters["plain_calls"] = static_cast<double>(plainFrame.calls);
    state.counters["asked"] = static_cast<double>(realFrame.bytes) / Million;
    state.counters["plain_asked"] = static_cast<double>(plainFrame.bytes) / Million;
    const Traffic traffic(frame.size(), views.shownSize(), list.rowCount());
    state.counters["touched"] = traffic.real() / Million;
    state.counters["plain_touched"] = traffic.plain() / Million;
    state.counters["floor_touched"] = traffic.floor() / Million;
}

} // namespace

BENCHMARK(show)
    ->ArgNames({"megapixels", "percent", "entries"})
    ->ArgsProduct({{5, 20}, {100, 50, 0}, {0, 1000, 100000}})
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

// The picture of the last takes 1.3 GB.
BENCHMARK(show)
    ->ArgNames({"megapixels", "percent", "entries"})
    ->ArgsProduct({{5, 20}, {400}, {0, 1000, 100000}})
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
