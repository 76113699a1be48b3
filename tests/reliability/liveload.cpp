// SPDX-License-Identifier: MIT
// Opens the camera, lets it run, clicks, and measures.

#include "liveload.h"

#include "mainwindow.h"
#include "residentmemory.h"
#include "windowdriver.h"

#include <QAction>
#include <QApplication>
#include <QEventLoop>
#include <QFile>
#include <QLabel>
#include <QTimer>

#include <cstdio>

namespace {

const std::string Serial = "KVLOAD";
constexpr std::uint32_t FrameComplete = 2;
constexpr int Tick = 5;       // milliseconds
constexpr int ClickEvery = 8; // ticks
constexpr int FewestClicks = 10;
constexpr int Samples = 10;

const char *const ParameterFile =
    "<CameraSettings><Sensor ID=\"101\">"
    "<Timing pixelclock=\"40\" framerate=\"1000\" exposure=\"1\"/>"
    "<Gain master=\"50\" red=\"0\" green=\"0\" blue=\"0\"/></Sensor></CameraSettings>";

int numberIn(const QLabel *label)
{
    return label->text().section(' ', 1).toInt();
}

} // namespace

Signaller::Signaller(const std::string &serial, std::uint32_t event, double perSecond)
    : camera(serial)
    , code(event)
    , thread([this, perSecond] { signal(perSecond); })
{
}

Signaller::~Signaller()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        over = true;
    }
    changed.notify_all();
    thread.join();
}

void Signaller::signal(double perSecond)
{
    const std::chrono::nanoseconds period(perSecond > 0.0 ? std::int64_t(1e9 / perSecond) : 0);
    auto due = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> lock(mutex);
    while (!over) {
        if (perSecond <= 0.0) {
            changed.wait(lock);
            continue;
        }
        due += period;
        if (std::chrono::steady_clock::now() < due)
            changed.wait_until(lock, due);
        kelvosim::signalEvent(camera, code);
        ++signalled;
    }
}

LiveLoad::LiveLoad(const Plan &wanted)
    : plan(wanted)
{
    kelvosim::reset();
    kelvosim::setLogging(false);
    kelvosim::CameraSpec spec;
    spec.serial = Serial;
    spec.kind = plan.kind;
    spec.width = plan.width;
    spec.height = plan.height;
    spec.hotPixels = 0; // no entries that a click could hit
    spec.lensCap = true;
    kelvosim::addCamera(spec);
    QFile file("cameraparameter.xml"); // without one a camera starts at one frame a second
    if (!file.open(QIODevice::WriteOnly) || file.write(ParameterFile) < 0)
        qFatal("the parameter file cannot be written");
    file.close();
    window = std::make_unique<MainWindow>();
    driver = std::make_unique<WindowDriver>(*window);
    QObject::connect(window.get(), &MainWindow::magnifierPositionChanged, [this] { ++figures.answers; });
    window->show();
    open();
}

LiveLoad::~LiveLoad() = default;

void LiveLoad::open()
{
    driver->selectCamera(QString::fromStdString(Serial));
    driver->trigger("openCameraAction");
    driver->trigger(qPrintable("zoom" + plan.zoom + "Action"));
    QMetaObject::invokeMethod(window.get(), "updateStatus", Qt::DirectConnection);
    const double rate = window->findChild<QLabel *>("frameRateLabel")->text().section(' ', 1).toDouble();
    frameTime = rate > 0.0 ? 1.0 / rate : 0.0;
    kelvosim::overrideFrameRate(Serial, plan.framesPerSecond);
    figures.answers = 0;
}

std::uint64_t LiveLoad::frames() const
{
    return kelvosim::completedFrames(Serial);
}

LiveLoad::Figures LiveLoad::run()
{
    QEventLoop loop;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    int ticks = 0;
    QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
        look();
        if (++ticks % ClickEvery == 0)
            click();
        if (figures.hangs || isEnough())
            loop.quit();
    });
    const Signaller signaller(Serial, FrameComplete, plan.signalsPerSecond);
    QElapsedTimer whole;
    whole.start();
    sinceTick.start();
    sinceFrame.start();
    sample();
    tick.start(Tick);
    loop.exec();
    figures.signalled = signaller.count();
    figures.seconds = whole.elapsed() / 1000.0;
    figures.simulatedSeconds = static_cast<double>(figures.frames) * frameTime;
    sample();
    return figures;
}

bool LiveLoad::isEnough() const
{
    return figures.frames >= plan.frames && figures.shown >= plan.shownFrames &&
           figures.clicks >= FewestClicks;
}

/// One tick: how long the loop had no time for it, and how far the camera is.
void LiveLoad::look()
{
    figures.longestGap = qMax(figures.longestGap, sinceTick.restart());
    const std::uint64_t now = frames();
    if (now != figures.frames)
        sinceFrame.restart();
    figures.hangs = sinceFrame.hasExpired(plan.mostMilliseconds);
    figures.frames = now;
    QMetaObject::invokeMethod(window.get(), "updateStatus", Qt::DirectConnection);
    figures.shown = static_cast<std::uint64_t>(numberIn(window->findChild<QLabel *>("framesLabel")));
    const auto samples = static_cast<std::uint64_t>(figures.memory.size());
    const bool due = figures.frames >= plan.frames * samples / Samples &&
                     figures.shown >= plan.shownFrames * samples / Samples;
    if (samples < Samples && due)
        sample();
}

void LiveLoad::click()
{
    const int answers = figures.answers;
    ++figures.clicks;
    driver->clickPixel(QPoint(figures.clicks % 16, 8));
    figures.answers = qMin(figures.answers, answers + 1);
}

void LiveLoad::sample()
{
    figures.memory << Sample{frames(), figures.shown, residentMemory()};
}

void printFigures(const LiveLoad::Figures &figures)
{
    std::printf("%llu frames taken, %llu events signalled beside them, %llu frames shown in %.1f s;\n"
                "the camera needs %.1f s for as many at the rate that is set\n",
                static_cast<unsigned long long>(figures.frames),
                static_cast<unsigned long long>(figures.signalled),
                static_cast<unsigned long long>(figures.shown), figures.seconds, figures.simulatedSeconds);
    std::printf("longest gap between two ticks of %d ms: %lld ms; %d clicks, %d answers\n", Tick,
                static_cast<long long>(figures.longestGap), figures.clicks, figures.answers);
    for (const LiveLoad::Sample &sample : figures.memory)
        std::printf("after %10llu frames, %10llu shown: %8.1f MiB resident\n",
                    static_cast<unsigned long long>(sample.frames),
                    static_cast<unsigned long long>(sample.shown),
                    static_cast<double>(sample.residentBytes) / (1024.0 * 1024.0));
    std::fflush(stdout);
}
