// SPDX-License-Identifier: MIT
// Planted into the real program: brings it to a moment and closes it there. What is left behind at the very
// end is told of on standard error.
//   speckmend-closing MOMENT WAY

#include "detectiondialogue.h"
#include "displaywidget.h"
#include "kelvosim.h"
#include "mainwindow.h"
#include "testcamera.h"
#include "windowdriver.h"

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QWindow>

#include <sys/prctl.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <thread>
#include <utility>

namespace {

const std::string Live = "KVLIVE";
const std::string Plain = "KVPLAIN";
constexpr int Retry = 20;            // milliseconds
constexpr int LongestGoodbye = 5000; // milliseconds

MainWindow *window = nullptr;
std::unique_ptr<WindowDriver> driver;

[[noreturn]] void fail(const char *why)
{
    std::fprintf(stderr, "script: %s\n", why);
    std::_Exit(99);
}

void require(bool condition, const char *why)
{
    if (!condition)
        fail(why);
}

// --- ways to close

void closeAsWindowManager(QWidget *widget)
{
    if (widget->windowHandle())
        widget->windowHandle()->close();
}

/// As a person does who closes what lies on top, one after the other, until nothing is left. A window under a
/// modal one does not close: what is asked there wants an answer first.
void closeTop()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (modal)
        closeAsWindowManager(window);
    require(!modal || window->isVisible(), "the window closed under a modal one");
    QWidget *popup = QApplication::activePopupWidget();
    closeAsWindowManager(popup ? popup : modal ? modal : window);
}

void closeFromTheTop()
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, closeTop);
    timer->start(Retry);
}

const std::map<QString, std::function<void()>> Ways = {
    {"top", closeFromTheTop},
    {"window", [] { window->close(); }},
    {"all", QApplication::closeAllWindows}, // as at the end of a session
    {"quit", QApplication::quit},
};

void closeProgram()
{
    Ways.at(QApplication::arguments().at(2))();
}

/// Once it holds, in whatever event loop runs then.
void closeWhen(const std::function<bool()> &condition)
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, [=] {
        if (!condition())
            return;
        timer->stop();
        closeProgram();
    });
    timer->start(5);
}

/// When the event loop gets its turn again.
void closeSoon()
{
    QTimer::singleShot(0, qApp, closeProgram);
}

// --- moments

void open(const std::string &serial)
{
    require(driver->selectCamera(QString::fromStdString(serial)), "the camera is not listed");
    driver->trigger("openCameraAction");
}

void openLive()
{
    open(Live);
    const auto shows = [] { return !driver->shownImage().isNull(); };
    require(WindowDriver::waitFor(shows), "no image shows");
    const auto enabled = [] { return driver->action("detectAction")->isEnabled(); };
    require(WindowDriver::waitFor(enabled), "the camera is not listed as opened");
}

/// Closes while the modal widget is open that the action opens.
void closeUnder(const char *action)
{
    WindowDriver::whenModal([](QWidget *) { closeProgram(); });
    driver->trigger(action);
}

void closeUnderPopup()
{
    closeWhen([] { return QApplication::activePopupWidget() != nullptr; });
}

void closeUnderContextMenu(const char *slot)
{
    closeUnderPopup();
    QMetaObject::invokeMethod(window, slot, Qt::DirectConnection, Q_ARG(QPoint, QPoint()));
}

/// From inside of the first call of the library that the action makes.
void closeInsideOfCalls(const char *action)
{
    kelvosim::duringCallsHere([] {
        static bool closed = false;
        if (!std::exchange(closed, true))
            closeSoon();
    });
    driver->trigger(action);
}

void whileCapturing(const std::function<void(QWidget *)> &visit)
{
    openLive();
    WindowDriver::whenModal([visit](QWidget *dialogue) {
        dialogue->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
        visit(dialogue);
    });
    driver->trigger("detectAction");
}

void capture(QWidget *dialogue)
{
    kelvosim::overrideFrameRate(Live, 20.0);
    const auto *progress = dialogue->findChild<QProgressBar *>();
    require(WindowDriver::waitFor([=] { return progress->value() >= 20; }), "nothing is captured");
    closeProgram();
}

/// The box opens inside of the dialogue, inside of the delivery of a frame.
void leakLight(QWidget *dialogue)
{
    kelvosim::setLensCap(Live, false);
    kelvosim::overrideFrameRate(Live, 1.0);
    closeWhen([=] {
        kelvosim::pushFrame(Live, std::vector<std::uint8_t>(128 * 96, 200));
        return QApplication::activeModalWidget() != dialogue;
    });
}

void closeWithBlockedThreads()
{
    openLive();
    kelvosim::blockCall("vx_Event", 7);
    kelvosim::signalDeviceEvent(130);
    require(WindowDriver::waitFor([] { return kelvosim::blockedCalls() == 2; }), "the threads do not block");
    closeProgram();
}

void closeWithDelayedThreads()
{
    openLive();
    kelvosim::delayCall("vx_Event", 3600 * 1000, 7);
    kelvosim::signalDeviceEvent(130);
    testcamera::turnEventLoop();
    closeProgram();
}

/// What the GUI thread calls takes long, and the end with it.
void closeWithSlowCalls()
{
    openLive();
    for (const char *function : {"vx_StopLiveVideo", "vx_ExitCamera", "vx_ClearSequence"})
        kelvosim::delayCall(function, 300);
    closeProgram();
}

void closeDuringUpload()
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.serial = "KVUPLOAD";
    spec.deviceId = 0;
    spec.firmwareUpload = 300;
    kelvosim::addCamera(spec);
    require(WindowDriver::waitFor([] { return driver->selectCamera("KVUPLOAD"); }), "no camera to upload to");
    closeInsideOfCalls("openCameraAction");
}

void closeWhileUnplugged()
{
    openLive();
    kelvosim::unplug(Live);
    const QWidget *image = driver->display()->widget();
    require(WindowDriver::waitFor([=] { return !image->isVisible(); }), "the removal is not heard of");
    closeProgram();
}

void closeAboveAboutQt()
{
    WindowDriver::whenModal([](QWidget *about) {
        closeWhen([about] { return QApplication::activeModalWidget() != about; });
        auto *label = about->findChild<QLabel *>("aboutQtLabel");
        QMetaObject::invokeMethod(label, "clicked", Q_ARG(int, 0));
    });
    driver->trigger("aboutAction");
}

const std::map<QString, std::function<void()>> Moments = {
    {"idle", closeProgram},
    {"live",
     [] {
         openLive();
         closeProgram();
     }},
    {"unplugged", closeWhileUnplugged},
    {"inside-open",
     [] {
         driver->selectCamera(QString::fromStdString(Live));
         closeInsideOfCalls("openCameraAction");
     }},
    {"inside-close",
     [] {
         openLive();
         closeInsideOfCalls("closeCameraAction");
     }},
    {"upload", closeDuringUpload},
    {"no-storage-warning",
     [] {
         WindowDriver::whenModal([](QWidget *) { closeProgram(); });
         open(Plain);
     }},
    {"detection",
     [] {
         openLive();
         closeUnder("detectAction");
     }},
    {"capturing", [] { whileCapturing(capture); }},
    {"light-leak", [] { whileCapturing(leakLight); }},
    {"write-question",
     [] {
         openLive();
         closeUnder("writeListAction");
     }},
    {"usage", [] { closeUnder("usageAction"); }},
    {"about", [] { closeUnder("aboutAction"); }},
    {"about-qt", closeAboveAboutQt},
    {"save",
     [] {
         openLive();
         closeUnder("saveListAction");
     }},
    {"load",
     [] {
         openLive();
         closeUnder("loadListAction");
     }},
    {"import", [] { closeUnder("importListAction"); }},
    {"camera-menu", [] { closeUnderContextMenu("showCameraListContextMenu"); }},
    {"hotpixel-menu",
     [] {
         openLive();
         closeUnderContextMenu("showBadpixelListContextMenu");
     }},
    {"zoom-menu",
     [] {
         openLive();
         closeUnderPopup();
         driver->action("zoomAction")->menu()->exec(window->mapToGlobal(QPoint(40, 40)));
     }},
    {"blocked-threads", closeWithBlockedThreads},
    {"delayed-threads", closeWithDelayedThreads},
    {"slow-calls", closeWithSlowCalls},
};

// --- the frame round them

void addBench()
{
    kelvosim::reset();
    kelvosim::CameraSpec live = testcamera::small();
    live.serial = Live;
    live.deviceId = 0;
    live.width = 128;
    live.height = 96;
    live.factoryList = {{10, 10}, {20, 30}};
    live.freeRunning = true;
    live.lensCap = true;
    kelvosim::addCamera(live);
    kelvosim::overrideFrameRate(Live, 100.0);
    kelvosim::CameraSpec plain = testcamera::small();
    plain.serial = Plain;
    plain.deviceId = 0;
    plain.storesLists = false;
    kelvosim::addCamera(plain);
}

/// Threads whose names begin so.
int threadsNamed(const QByteArray &start)
{
    int count = 0;
    const QDir tasks("/proc/self/task");
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(task + "/comm"));
        count += name.open(QIODevice::ReadOnly) && name.readAll().startsWith(start) ? 1 : 0;
    }
    return count;
}

/// Threads of the program and of the simulated library: the others have names of their own.
int ownThreads()
{
    return threadsNamed("speckmend") + threadsNamed("EventThread");
}

/// The GUI thread, and those without a name of a sanitizer or a graphics driver: what is there before the
/// first camera.
int lastThreads = 0;

void play()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *found = qobject_cast<MainWindow *>(widget))
            window = found;
    }
    require(window, "there is no window");
    driver = std::make_unique<WindowDriver>(*window);
    lastThreads = threadsNamed("speckmend");
    Moments.at(QApplication::arguments().at(1))();
}

/// Runs when the window is gone and the application object is going.
void lookForLeftovers()
{
    const auto tell = [](const char *what, int count) {
        if (count != 0)
            std::fprintf(stderr, "left behind: %d %s\n", count, what);
    };
    driver.reset();
    tell("handles", kelvosim::openHandles());
    tell("buffers", kelvosim::allocatedBuffers());
    tell("locked buffers", kelvosim::lockedBuffers());
    tell("waiting threads", kelvosim::waitingThreads());
    // A thread that has been waited for may still be on its last steps.
    QDeadlineTimer deadline(LongestGoodbye);
    while (ownThreads() > lastThreads && !deadline.hasExpired())
        std::this_thread::yield();
    tell("threads", ownThreads() - lastThreads);
}

void plant()
{
    prctl(PR_SET_NAME, "speckmend"); // by which its threads are told from those of an emulator
    addBench();
    qAddPostRoutine(lookForLeftovers);
    QTimer::singleShot(0, qApp, play);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(plant)
