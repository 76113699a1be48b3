// SPDX-License-Identifier: MIT
// The end of a detection run in the real window: from the arrival of the eleventh frame to the finished list.
#include "tentimes.h"

#include "detectiondialogue.h"
#include "windowfixture.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace {

constexpr int Few = 10000;
constexpr int Width = 1280;
constexpr int Height = 1024;
constexpr int HotStep = 11; // pixels from one hot pixel to the next
constexpr int LongestWait = 600000;
const char CameraSerial[] = "KVHOT";

// Brighter ones would be taken for light.
constexpr std::uint8_t Dark = 4;
constexpr std::uint8_t Hot = 100;

/// Places across the sensor, none in the first column, which is looked at twice.
std::vector<QPoint> hotPixels(int count)
{
    std::vector<QPoint> list;
    for (int at = 1; static_cast<int>(list.size()) < count; at += HotStep)
        list.emplace_back(1 + at % (Width - 1), at / (Width - 1));
    return list;
}

std::vector<std::uint8_t> frameWith(const std::vector<QPoint> &hot)
{
    std::vector<std::uint8_t> frame(Width * Height, Dark);
    for (const QPoint &pixel : hot)
        frame[static_cast<std::size_t>(pixel.y() * Width + pixel.x())] = Hot;
    return frame;
}

void addCamera()
{
    kelvosim::CameraSpec camera = WindowFixture::spec();
    camera.serial = CameraSerial;
    camera.width = Width;
    camera.height = Height;
    kelvosim::addCamera(camera);
}

/// A run in the real window, with its table, image and dialogue.
class Run final
{
public:
    /// One that adds `count` entries, and finds a tenth as many beside them that are listed already.
    explicit Run(int count)
        : added(count)
        , hot(hotPixels(count + count / 10))
        , frame(frameWith(hot))
    {
        window.resetBench();
        kelvosim::setLogging(false);
        addCamera();
        window.showWindow();
        window.open(CameraSerial);
        window.window->resize(1000, 800);
        window.window->findChild<QDockWidget *>("BadpixelListDock")->raise();
        auto *list = static_cast<BadpixelListModel *>(window.driver->badpixelTable()->model());
        for (int i = 0; i < count / 10; ++i)
            list->addBadpixel(hot[static_cast<std::size_t>(11 * i)]);
        finishedRows = window.rows() + added;
    }

    /// Plays the run. @return whether it came to its end and the list is what it should be
    bool play()
    {
        bool done = false;
        WindowDriver::whenModal([&](QWidget *modal) {
            auto *dialogue = qobject_cast<DetectionDialogue *>(modal);
            done = captureTen(dialogue) && finish(dialogue) && isFinished(dialogue);
            dialogue->reject();
        });
        window.driver->trigger("detectAction");
        return done;
    }

    double secondsToTheList() const { return seconds; }

    /// Seconds of work between two turns of the event loop, from the eleventh frame until the list is shown.
    double longestGap() const { return gap; }

private:
    bool captureTen(DetectionDialogue *dialogue)
    {
        int arrived = 0;
        QObject::connect(window.window.get(), &MainWindow::detectionProgress, dialogue,
                         [&arrived](int percent) { arrived = percent; });
        dialogue->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
        bool captured = true;
        for (int wanted = 10; captured && wanted <= 100; wanted += 10) {
            captured = window.push(CameraSerial, frame) &&
                       WindowDriver::waitFor([&] { return arrived == wanted; }, LongestWait);
        }
        QObject::disconnect(window.window.get(), &MainWindow::detectionProgress, dialogue, nullptr);
        testcamera::turnEventLoop();
        return captured;
    }

    bool finish(DetectionDialogue *dialogue)
    {
        double lastTick = threadSeconds();
        QTimer tick;
        tick.setTimerType(Qt::PreciseTimer);
        QObject::connect(&tick, &QTimer::timeout, [&] {
            gap = qMax(gap, threadSeconds() - lastTick);
            lastTick = threadSeconds();
        });
        tick.start(1);
        const QWidget *buttons = dialogue->findChild<QDialogButtonBox *>();
        bool ended = false;
        seconds = secondsOf([&] {
            ended = window.push(CameraSerial, frame) &&
                    WindowDriver::waitFor([&] { return buttons->isEnabled(); }, LongestWait);
        });
        testcamera::turnEventLoop(); // layouts and repaints that were put off
        return ended && gap > 0.0;
    }

    bool isFinished(const DetectionDialogue *dialogue) const
    {
        const QString count = "Hot pixel detected: " + QString::number(added);
        const QList<QLabel *> labels = dialogue->findChildren<QLabel *>();
        return window.rows() == finishedRows &&
               std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel *label) { return label->text() == count; });
    }

    int added;
    std::vector<QPoint> hot;
    std::vector<std::uint8_t> frame;
    int finishedRows = 0;
    double seconds = 0.0;
    double gap = 0.0;
    WindowFixture window;
};

/// Plays runs that add nothing, few entries, and ten times as many. The columns are the shortest times of the
/// iterations and what the many cost beside the few, also without what a run costs that adds nothing.
void compare(benchmark::State &state, double (Run::*secondsOfRun)() const)
{
    const int counts[] = {0, Few, 10 * Few};
    double best[] = {1e9, 1e9, 1e9};
    for (auto _ : state) {
        for (int i = 0; i < 3; ++i) {
            Run run(counts[i]);
            if (!run.play())
                return state.SkipWithError("a run did not come to the end that it should");
            best[i] = std::min(best[i], (run.*secondsOfRun)());
            state.SetIterationTime((run.*secondsOfRun)());
        }
    }
    state.counters["none_ms"] = best[0] * 1e3;
    state.counters["few_ms"] = best[1] * 1e3;
    state.counters["tenfold_ms"] = best[2] * 1e3;
    state.counters["tenfold/few"] = best[2] / best[1];
    state.counters["tenfold/few_less_none"] = (best[2] - best[0]) / (best[1] - best[0]);
}

void enough(benchmark::internal::Benchmark *benchmark)
{
    benchmark->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK_CAPTURE(compare, to_the_list, &Run::secondsToTheList)->Apply(enough);
BENCHMARK_CAPTURE(compare, longest_gap, &Run::longestGap)->Apply(enough);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
