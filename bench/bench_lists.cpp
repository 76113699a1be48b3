// SPDX-License-Identifier: MIT
// What is done with long hot pixel lists in the real window, on ten thousand entries and on ten times as
// many.
#include "tentimes.h"

#include "windowfixture.h"

#include <QApplication>
#include <QDockWidget>
#include <QFile>
#include <QPushButton>
#include <QScrollBar>
#include <QTextStream>

#include <random>

namespace {

constexpr int Few = 10000;
constexpr int FewToWrite = 6000; // a camera takes 65535 at most
constexpr int Steps = 200;       // selections and scrolls that are timed together
constexpr int Lookups = 200;
const char CameraSerial[] = "KVROOMY";

enum Classes { UsersOnly, Mixed };

/// Places across a sensor, none twice, in no order.
std::vector<QPoint> places(int count)
{
    std::vector<QPoint> list;
    for (int i = 0; i < count; ++i)
        list.emplace_back(i % 1000, 7 * (i / 1000));
    std::shuffle(list.begin(), list.end(), std::mt19937(1));
    return list;
}

/// Turns the event loop until the layouts and repaints that were put off are done.
void settle()
{
    testcamera::turnEventLoop();
}

/// The real window with an open camera. No frame is shown: drawing the circles is the live view's time.
class Bench final
{
public:
    Bench()
    {
        window.resetBench();
        kelvosim::setLogging(false);
        kelvosim::CameraSpec camera = WindowFixture::spec();
        camera.serial = CameraSerial;
        camera.capacity = 65536;
        kelvosim::addCamera(camera);
        window.showWindow();
        window.open(CameraSerial);
        window.window->resize(1000, 800);
        window.window->findChild<QDockWidget *>("BadpixelListDock")->raise();
        settle();
    }

    /// With a list of that many entries, imported, behind the camera's own.
    explicit Bench(int count, Classes classes = UsersOnly)
        : Bench()
    {
        import(count, classes);
    }

    /// Seconds of an import, from the choice of the file until the list is shown.
    double import(int count, Classes classes = UsersOnly)
    {
        writeText(count, classes);
        const int before = window.rows();
        const double seconds = throughDialogue("importListAction", textFile());
        return window.rows() == before + count ? seconds : -1.0;
    }

    double exportText()
    {
        const QString file = folder.filePath("exported.txt");
        const double seconds = throughDialogue("exportListAction", file);
        return QFile(file).size() > QFile(textFile()).size() / 2 ? seconds : -1.0;
    }

    /// Seconds from the answer "Yes" until the camera has the entries.
    double write()
    {
        double start = 0.0;
        WindowDriver::whenModal([&](QWidget *modal) {
            start = threadSeconds();
            qobject_cast<QMessageBox *>(modal)->button(QMessageBox::Yes)->click();
        });
        window.driver->trigger("writeListAction");
        const double seconds = threadSeconds() - start;
        const std::size_t stored = kelvosim::storedUserList(CameraSerial).size();
        return stored + 2 == static_cast<std::size_t>(window.rows()) ? seconds : -1.0;
    }

    double sort(int column)
    {
        return secondsOf([&] {
            table()->sortByColumn(column, Qt::AscendingOrder);
            settle();
        });
    }

    double clear(int left)
    {
        const double seconds = secondsOf([&] {
            window.driver->trigger("clearBadpixelAction");
            settle();
        });
        return window.rows() == left ? seconds : -1.0;
    }

    /// Selects rows across the list.
    double select()
    {
        return secondsOf([&] {
            for (int step = 0; step < Steps; ++step) {
                table()->selectRow(step * (window.rows() / Steps));
                settle();
            }
        });
    }

    /// Scrolls from the list's start to its end.
    double scroll()
    {
        QScrollBar *bar = table()->verticalScrollBar();
        return secondsOf([&] {
            for (int step = 0; step < Steps; ++step) {
                bar->setValue(step * bar->maximum() / Steps);
                table()->viewport()->repaint();
            }
        });
    }

    const BadpixelListModel &list() const { return static_cast<BadpixelListModel &>(*table()->model()); }

private:
    QTableView *table() const { return window.driver->badpixelTable(); }
    QString textFile() const { return folder.filePath("list.txt"); }

    /// Without a tenth of the entries being doubles, nothing of this would be refused: imports refuse
    /// nothing.
    void writeText(int count, Classes classes)
    {
        QFile file(textFile());
        file.open(QIODevice::WriteOnly);
        QTextStream text(&file);
        int row = 0;
        for (const QPoint &place : places(count))
            text << place.x() << ' ' << place.y() << ' ' << (classes == Mixed ? row++ % 2 : int(User))
                 << '\n';
    }

    double throughDialogue(const char *action, const QString &file)
    {
        double start = 0.0;
        WindowDriver::chooseFile(file, [&](const QFileDialog &) { start = threadSeconds(); });
        window.driver->trigger(action);
        settle();
        return threadSeconds() - start;
    }

    QTemporaryDir folder;
    WindowFixture window;
};

void import(benchmark::State &state)
{
    tenTimes(state, Few, [](int count) { return Bench().import(count); });
}

void exportText(benchmark::State &state)
{
    tenTimes(state, Few, [](int count) { return Bench(count).exportText(); });
}

void write(benchmark::State &state)
{
    tenTimes(state, FewToWrite, [](int count) { return Bench(count).write(); });
}

void sort(benchmark::State &state, int column)
{
    tenTimes(state, Few, [=](int count) { return Bench(count, Mixed).sort(column); });
}

void clearUsers(benchmark::State &state)
{
    tenTimes(state, Few, [](int count) { return Bench(count).clear(2); });
}

/// Every second entry stays.
void clearEverySecond(benchmark::State &state)
{
    tenTimes(state, Few, [](int count) { return Bench(count, Mixed).clear(count / 2 + 2); });
}

void select(benchmark::State &state)
{
    tenTimes(state, Few, [](int count) { return Bench(count).select(); });
}

void scroll(benchmark::State &state)
{
    tenTimes(state, Few, [](int count) { return Bench(count).scroll(); });
}

/// Places that are there, across the list; the first one makes the index anew.
void findExactly(benchmark::State &state)
{
    tenTimes(state, Few, [](int count) {
        const Bench bench(count);
        const std::vector<QPoint> all = places(count);
        int found = 0;
        const double seconds = secondsOf([&] {
            for (int i = 0; i < Lookups; ++i) {
                const QPoint at = all[static_cast<std::size_t>(i * (count / Lookups))];
                found += bench.list().findBadpixel(at.x(), at.y(), 1).isValid();
            }
        });
        return found == Lookups ? seconds : -1.0;
    });
}

/// Places that are far from every entry: each lookup walks to the end.
void findNear(benchmark::State &state)
{
    tenTimes(state, Few, [](int count) {
        const Bench bench(count);
        int found = 0;
        const double seconds = secondsOf([&] {
            for (int i = 0; i < Lookups; ++i)
                found += bench.list().findBadpixel(5000 + i, 5000, 7).isValid();
        });
        return found == 0 ? seconds : -1.0;
    });
}

void enough(benchmark::internal::Benchmark *benchmark)
{
    benchmark->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK(import)->Apply(enough);
BENCHMARK(exportText)->Apply(enough);
BENCHMARK(write)->Apply(enough);
BENCHMARK_CAPTURE(sort, x, 0)->Apply(enough);
BENCHMARK_CAPTURE(sort, y, 1)->Apply(enough);
BENCHMARK_CAPTURE(sort, class, 2)->Apply(enough);
BENCHMARK(clearUsers)->Apply(enough);
BENCHMARK(clearEverySecond)->Apply(enough);
BENCHMARK(select)->Apply(enough);
BENCHMARK(scroll)->Apply(enough);
BENCHMARK(findExactly)->Apply(enough);
BENCHMARK(findNear)->Apply(enough);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
