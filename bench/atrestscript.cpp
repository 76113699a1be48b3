// SPDX-License-Identifier: MIT
// Planted into a program: tells what it takes to start, and what it takes while nobody touches it. Figures go
// to standard output, a line of names and values.
//   PROGRAM start                 until the first window is painted, and what is resident when it has settled
//   PROGRAM rest SECONDS          over that time, without a camera
//   PROGRAM live SECONDS SERIAL   over that time, with that camera open

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTableView>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int Settling = 5000; // milliseconds until whatever a start or an opening sets off is over
constexpr int SerialColumn = 3;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

double processorMilliseconds()
{
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

/// Since the moment that SPECKMEND_STARTED names, in seconds of the calendar's clock.
double millisecondsSinceStart()
{
    timeval now;
    gettimeofday(&now, nullptr);
    const double seconds = static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) * 1e-6;
    return (seconds - qgetenv("SPECKMEND_STARTED").toDouble()) * 1e3;
}

/// A value of a /proc file of the form "name: value".
double field(const QByteArray &content, const char *name)
{
    for (const QByteArray &line : content.split('\n')) {
        if (line.startsWith(name))
            return line.mid(line.indexOf(':') + 1).trimmed().split(' ').first().toDouble();
    }
    return 0.0;
}

void tellMemory()
{
    const QByteArray status = contentOf("/proc/self/status");
    std::printf(" resident_MiB %.1f own_MiB %.1f", field(status, "VmRSS:") / 1024,
                field(status, "RssAnon:") / 1024);
}

/// What threads have used so far. Those of the simulated camera library, which bear the program's name as its
/// first thread does, stand for the camera and are not the program's.
struct Usage
{
    double gui = 0.0;     // seconds of processor time
    double helpers = 0.0; // event threads and those of Qt
    double cameras = 0.0;
    double wakings = 0.0; // of the GUI thread
    int frames = 0;       // that were shown

    static Usage now();
    void add(const QString &task, const QByteArray &programName);
};

void Usage::add(const QString &task, const QByteArray &programName)
{
    const QString folder = "/proc/self/task/" + task;
    const QByteArray stat = contentOf(folder + "/stat");
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    const double ticks = fields.value(11).toDouble() + fields.value(12).toDouble(); // user, system
    const double seconds = ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
    if (task.toInt() == getpid()) {
        gui += seconds;
        wakings += field(contentOf(folder + "/status"), "voluntary_ctxt_switches:");
    } else if (contentOf(folder + "/comm") == programName) {
        cameras += seconds;
    } else {
        helpers += seconds;
    }
}

QWidget *mainWindow()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QMainWindow"))
            return widget;
    }
    return nullptr;
}

/// The status bar's count, up to date. Only the program has one.
int framesShown()
{
    QWidget *window = mainWindow();
    QObject *label = window ? window->findChild<QObject *>("framesLabel") : nullptr;
    if (!label || !QMetaObject::invokeMethod(window, "updateStatus", Qt::DirectConnection))
        return window ? window->property("frames").toInt() : 0;
    return label->property("text").toString().section(' ', 1).toInt();
}

Usage Usage::now()
{
    Usage usage;
    usage.frames = framesShown();
    const QDir tasks("/proc/self/task");
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        usage.add(task, contentOf("/proc/self/comm"));
    return usage;
}

void finish()
{
    std::printf("\n");
    std::fflush(stdout);
    QApplication::quit();
}

void tellUsage(const Usage &before, int seconds)
{
    const Usage after = Usage::now();
    const double gui = (after.gui - before.gui) * 1e3;
    const double helpers = (after.helpers - before.helpers) * 1e3;
    const double cameras = (after.cameras - before.cameras) * 1e3;
    const int frames = after.frames - before.frames;
    std::printf("ms_a_second %.3f", (gui + helpers) / seconds);
    if (frames > 0)
        std::printf(" ms_a_frame %.3f frames %d", (gui + helpers) / frames, frames);
    std::printf(" gui_ms %.0f helpers_ms %.0f cameras_ms %.0f wakings %.0f", gui, helpers, cameras,
                after.wakings - before.wakings);
    tellMemory();
}

void measureUsage(int seconds, bool live)
{
    const Usage before = Usage::now();
    QTimer::singleShot(seconds * 1000, qApp, [before, seconds, live] {
        if (live && framesShown() == before.frames)
            qFatal("no frame was shown");
        tellUsage(before, seconds);
        finish();
    });
}

void openCamera(const QString &serial)
{
    QWidget *window = mainWindow();
    auto *table = window->findChild<QTableView *>("cameraTable");
    if (!table)
        return; // not the program
    for (int row = 0; row < table->model()->rowCount(); ++row) {
        if (table->model()->index(row, SerialColumn).data().toString() == serial)
            table->selectRow(row);
    }
    window->findChild<QAction *>("openCameraAction")->trigger();
}

/// Tells of the first window that is shown, right after it has been painted.
class FirstPaint final : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        // The window paints itself inside of the delivery of this event; what is queued here comes after
        // that.
        if (event->type() == QEvent::Expose && static_cast<QWindow *>(receiver)->isExposed()) {
            qApp->removeEventFilter(this);
            QTimer::singleShot(0, this, &FirstPaint::tell);
        }
        return false;
    }

private:
    void tell()
    {
        std::printf("cpu_ms %.1f wall_ms %.1f", processorMilliseconds(), millisecondsSinceStart());
        QTimer::singleShot(1000, this, [] {
            tellMemory();
            finish();
        });
    }
};

void plant()
{
    const QStringList arguments = QApplication::arguments();
    const QString mode = arguments.value(1);
    const int seconds = arguments.value(2).toInt();
    if (mode == "start") {
        qApp->installEventFilter(new FirstPaint(qApp));
        return;
    }
    const bool live = mode == "live";
    if (live)
        QTimer::singleShot(0, qApp, [arguments] { openCamera(arguments.value(3)); });
    QTimer::singleShot(Settling, qApp, [seconds, live] { measureUsage(seconds, live); });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(plant)
