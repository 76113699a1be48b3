// SPDX-License-Identifier: MIT
// Plays the way and looks after each step at what must hold whatever the library does.

#include "programway.h"

#include "detectiondialogue.h"
#include "displaywidget.h"
#include "kelvo_api.h"
#include "mainwindow.h"
#include "parameterblockwidget.h"
#include "windowdriver.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QMutex>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr int Width = 48;
constexpr int Height = 40;
constexpr int FramesOfARun = 11;     // ten, and the one on whose arrival the detector runs
constexpr int LongestAnswer = 30000; // milliseconds

// Of a library that lies, which may never give the answer.
constexpr int LongAnswer = 100;
constexpr int ShortAnswer = 5; // after it gave none
const std::string Mono = "KVMONO";
const std::string Colour = "KVCOLOUR";
const std::vector<kelvosim::Pixel> Stored = {{3, 4}, {5, 6}};

const char *const ParameterFile = "<CameraSettings><Sensor ID=\"101\">"
                                  "<Timing pixelclock=\"40\" framerate=\"20\" exposure=\"10\"/>"
                                  "<Gain master=\"20\" red=\"1\" green=\"2\" blue=\"3\"/>"
                                  "</Sensor></CameraSettings>";

kelvosim::CameraSpec spec(const std::string &serial, kelvosim::SensorKind kind)
{
    kelvosim::CameraSpec camera;
    camera.serial = serial;
    camera.kind = kind;
    camera.width = Width;
    camera.height = Height;
    camera.hotPixels = 0;
    camera.freeRunning = false;
    return camera;
}

/// Dark, with two hot pixels.
std::vector<std::uint8_t> darkFrame()
{
    std::vector<std::uint8_t> frame(Width * Height, 4);
    frame[7 * Width + 9] = 200;
    frame[20 * Width + 30] = 220;
    return frame;
}

void writeFile(const QString &name, const QByteArray &content)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(name));
}

bool equal(const std::vector<kelvosim::Pixel> &a, const std::vector<kelvosim::Pixel> &b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

int countOf(const std::vector<kelvosim::Call> &calls, const std::string &name, bool onlySuccesses)
{
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const kelvosim::Call &call) {
        return (call.function == name || kelvosim::name(call) == name) &&
               (!onlySuccesses || (call.returned && call.result == 0));
    }));
}

QMutex warningsMutex; // guards warnings
QStringList warnings; // of any thread

/// What the libraries and the program complain about, as when a thread is destroyed that runs.
void collectWarning(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    // The platform without a display cannot tell anybody the limits of a window's size.
    if (type == QtDebugMsg || type == QtInfoMsg || text.contains("propagateSizeHints"))
        return;
    std::fprintf(stderr, "%s\n", qPrintable(text));
    const QMutexLocker lock(&warningsMutex);
    warnings << text;
}

} // namespace

ProgramWay::ProgramWay()
    : watchdog(std::chrono::seconds(120))
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    if (!QDir::setCurrent(folder.path()))
        qFatal("no temporary folder");
    writeFile("cameraparameter.xml", ParameterFile);
    writeFile("kept.txt", "1 2 1\n3 4 1\n");
    makeListFile();
    answerer.detection = [this](DetectionDialogue &dialogue) { runDetection(dialogue); };
    addSteps();
}

ProgramWay::~ProgramWay() = default;

/// The library's binary file that the way loads.
void ProgramWay::makeListFile()
{
    resetBench();
    std::uint32_t handle = 0x8001;
    std::uint16_t list[] = {2, 11, 12, 13, 14};
    wchar_t path[] = L"kept.bin";
    const bool made = vx_InitCamera(&handle, nullptr) == 0 &&
                      vx_HotPixel(handle, 33027, list, sizeof list) == 0 &&
                      vx_HotPixel(handle, 33041, path, 0) == 0 && vx_ExitCamera(handle) == 0;
    if (!made)
        qFatal("the list file cannot be made");
}

void ProgramWay::resetBench()
{
    kelvosim::reset();
    kelvosim::CameraSpec mono = spec(Mono, kelvosim::SensorKind::Mono);
    mono.factoryList = {{10, 10}, {20, 30}};
    kelvosim::addCamera(mono);
    kelvosim::setStoredUserList(Mono, Stored);
    kelvosim::CameraSpec colour = spec(Colour, kelvosim::SensorKind::Colour32);
    colour.sensorId = 0x0102; // the parameter file has nothing for it
    colour.storesLists = false;
    colour.firmwareUpload = 1;
    kelvosim::addCamera(colour);
    kelvosim::clearLog();
}

void ProgramWay::addSteps()
{
    steps << Step{"start", [this] { start(); }, Nothing};
    steps << Step{"list the cameras", [this] { refreshList(); }, Nothing};
    steps << Step{"open", [this] { open(Mono); }, MayAdd | MayLose};
    steps << Step{"live frames", [this] { pushFrames(3); }, Nothing};
    steps << Step{"statistics", [this] { invoke("updateStatus"); }, Nothing};
    steps << Step{"settings", [this] { changeSettings(); }, Nothing};
    addListSteps();
    addCameraSteps();
    steps << Step{"quit", [this] { quit(); }, MayLose};
}

void ProgramWay::addListSteps()
{
    steps << Step{"detect", [this] { trigger("detectAction"); }, MayAdd};
    steps << Step{"add", [this] { addEntry(); }, MayAdd};
    steps << Step{"delete", [this] { deleteLastEntry(); }, MayLose};
    steps << Step{"write", [this] { trigger("writeListAction"); }, MayStore};
    steps << Step{"save", [this] { chooseFile("saveListAction", "saved.bin"); }, Nothing};
    steps << Step{"export", [this] { chooseFile("exportListAction", "exported.txt"); }, Nothing};
    steps << Step{"load", [this] { chooseFile("loadListAction", "kept.bin"); }, MayAdd | MayLose};
    steps << Step{"import", [this] { chooseFile("importListAction", "kept.txt"); }, MayAdd | MayLose};
    steps << Step{"clear", [this] { trigger("clearBadpixelAction"); }, MayLose};
    steps << Step{"write none", [this] { trigger("writeListAction"); }, MayStore};
    steps << Step{"add another", [this] { addEntry(); }, MayAdd};
}

void ProgramWay::addCameraSteps()
{
    steps << Step{"correction on", [this] { trigger("correctionAction"); }, Nothing};
    steps << Step{"correction off", [this] { trigger("correctionAction"); }, Nothing};
    steps << Step{"unplug", [this] { unplug(); }, Nothing};
    steps << Step{"reconnect", [this] { plug(); }, Nothing};
    steps << Step{"list again", [this] { refreshList(); }, Nothing};
    steps << Step{"a frame again", [this] { pushFrames(1); }, Nothing};
    steps << Step{"close", [this] { close(); }, MayLose};
    steps << Step{"open another", [this] { open(Colour); }, MayAdd | MayLose};
    steps << Step{"its frame", [this] { pushFrames(1); }, Nothing};
    steps << Step{"write where it cannot be", [this] { invoke("writeBadpixelList"); }, MayStore};
    steps << Step{"open the first over it", [this] { open(Mono); }, MayAdd | MayLose};
    steps << Step{"a last frame", [this] { pushFrames(1); }, Nothing};
}

void ProgramWay::play()
{
    const QtMessageHandler before = qInstallMessageHandler(collectWarning);
    resetBench();
    QSettings("Kelvo", "Kelvo").clear();
    for (const char *made : {"saved.bin", "exported.txt"})
        QFile::remove(made);
    found.clear();
    textsOfSteps.clear();
    firstCalls.clear();
    opened = Mono;
    gone = false;
    for (int step = 0; step < steps.size(); ++step) {
        playStep(step);
        if (step == 0 && !window)
            break; // the start told why
    }
    watchdog.hear((wayName + ": the end").toStdString());
    if (beforeStep)
        beforeStep(length());
    checkHeld();
    checkWarnings();
    kelvosim::tellTheTruth();
    kelvosim::clearFaults();
    qInstallMessageHandler(before);
}

void ProgramWay::playStep(int number)
{
    const Step &step = steps.at(number);
    watchdog.hear((wayName + ": " + step.name).toStdString());
    if (beforeStep)
        beforeStep(number);
    isGone(); // the threads wake up as soon as they have to
    firstCalls << static_cast<int>(kelvosim::log().size());
    const Entries before = entries();
    const std::vector<kelvosim::Pixel> storedBefore = kelvosim::storedUserList(Mono);
    answerer.said.clear();
    texts.clear();
    step.play();
    textsOfSteps << texts + answerer.said;
    checkEntries(step, before);
    checkStore(step, storedBefore);
    if (clicksAfterEachStep && window)
        clickSomewhere();
}

QStringList ProgramWay::shown() const
{
    QStringList all;
    for (const QStringList &ofStep : textsOfSteps)
        all += ofStep;
    return all;
}

/// Where a person could.
void ProgramWay::trigger(const char *action)
{
    if (driver->action(action)->isEnabled())
        driver->trigger(action);
}

void ProgramWay::find(const QString &finding)
{
    found << finding;
}

/// A start that fails says why and leaves nothing.
void ProgramWay::start()
{
    try {
        window = std::make_unique<MainWindow>();
    } catch (const std::exception &failure) {
        texts << failure.what();
        return;
    }
    driver = std::make_unique<WindowDriver>(*window);
    QObject::connect(window->statusBar(), &QStatusBar::messageChanged, window.get(),
                     [this](const QString &text) {
                         if (!text.isEmpty())
                             texts << text;
                     });
    stopTimers();
    window->show();
}

/// What timers do is played in steps of its own.
void ProgramWay::stopTimers()
{
    for (QTimer *timer : window->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly))
        timer->stop();
    for (QTimer *timer : driver->cameraTable()->model()->findChildren<QTimer *>())
        timer->stop();
}

void ProgramWay::refreshList()
{
    if (!QMetaObject::invokeMethod(driver->cameraTable()->model(), "refresh", Qt::DirectConnection))
        qFatal("the camera list has no refresh()");
}

void ProgramWay::open(const std::string &serial)
{
    opened = serial;
    waitedInVain = false;
    driver->selectCamera(QString::fromStdString(serial));
    trigger("openCameraAction");
    stopTimers();
}

/// Which row is selected after a reconnection depends on which of the two threads was faster.
void ProgramWay::close()
{
    driver->selectCamera(QString::fromStdString(Mono));
    trigger("closeCameraAction");
}

void ProgramWay::changeSettings()
{
    const auto *block = window->findChild<ParameterBlockWidget *>();
    for (const DoubleParameterWidget *control : {block->framerate(), block->exposure()}) {
        const double middle = (control->spinBox()->minimum() + control->spinBox()->maximum()) / 2;
        control->spinBox()->setValue(middle);
    }
    block->mastergain()->spinBox()->setValue(33);
}

void ProgramWay::runDetection(DetectionDialogue &dialogue)
{
    const auto *buttons = dialogue.findChild<QDialogButtonBox *>();
    buttons->button(QDialogButtonBox::Ok)->click();
    pushFrames(FramesOfARun);
    dialogue.reject(); // Escape, which ends a run that got no frames too
}

void ProgramWay::addEntry()
{
    driver->clickPixel(QPoint(40, 2));
    trigger("addBadpixelAction");
}

void ProgramWay::deleteLastEntry()
{
    const Entries before = entries();
    if (before.isEmpty())
        return;
    driver->badpixelTable()->selectRow(before.size() - 1);
    trigger("deleteBadpixelAction");
    const Entries after = entries();
    if (after != before && after != before.mid(0, before.size() - 1))
        find("deletion took another entry than the selected one");
}

void ProgramWay::chooseFile(const char *action, const QString &name)
{
    answerer.file = QDir::current().filePath(name);
    trigger(action);
}

/// Waits until the window has dealt with the event of the camera and with that of the system.
void ProgramWay::unplug()
{
    const int refreshes = kelvosim::callCount("vx_GetNumberOfCameras");
    const QWidget *image = driver->display()->widget();
    kelvosim::unplug(Mono);
    if (hears(false))
        waitFor([=] { return kelvosim::callCount("vx_GetNumberOfCameras") > refreshes; });
    if (hears(true))
        waitFor([=] { return image->isHidden(); });
}

void ProgramWay::plug()
{
    const int refreshes = kelvosim::callCount("vx_GetNumberOfCameras");
    const int expected = int(hears(false)) + int(hears(true)); // the window refreshes for either event
    kelvosim::plug(Mono);
    waitFor([=] { return kelvosim::callCount("vx_GetNumberOfCameras") >= refreshes + expected; });
}

void ProgramWay::pushFrames(int count)
{
    for (int i = 0; i < count; ++i)
        pushFrame();
}

/// Waits until the frame's event has been handled, if there is anybody who hears of it.
void ProgramWay::pushFrame()
{
    const int handled = kelvosim::callCount("vx_GetActSeqBuf");
    if (!kelvosim::pushFrame(opened, darkFrame()) || !hears(true))
        return;
    waitFor([=] { return kelvosim::callCount("vx_GetActSeqBuf") > handled; });
}

void ProgramWay::clickSomewhere()
{
    int moves = 0;
    const auto connection =
        QObject::connect(window.get(), &MainWindow::magnifierPositionChanged, [&] { ++moves; });
    // Two places, so that one is not where an entry is selected already.
    ++clicks;
    driver->clickPixel(QPoint(2 + clicks % 3, 36));
    driver->clickPixel(QPoint(44, 30 + clicks % 3));
    QObject::disconnect(connection);
    if (moves == 0)
        find("the window answers no click");
}

void ProgramWay::quit()
{
    driver.reset();
    window.reset();
}

/// Returns at once when the library was silenced meanwhile.
bool ProgramWay::waitFor(const std::function<bool()> &condition)
{
    QElapsedTimer timer;
    timer.start();
    QTimer tick; // the condition may come true without an event
    tick.start(1);
    while (!condition()) {
        if (isGone()) {
            QCoreApplication::processEvents();
            return false;
        }
        const int patience = !libraryLies ? LongestAnswer : waitedInVain ? ShortAnswer : LongAnswer;
        if (timer.elapsed() > patience) {
            waitedInVain = true;
            if (!libraryLies)
                find("waited in vain");
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool ProgramWay::isGone()
{
    if (!diesWithFirstFailure || kelvosim::failedCalls() == 0)
        return false;
    if (!std::exchange(gone, true)) {
        kelvosim::signalDeviceEvent(129);
        kelvosim::signalEvent(Mono, 8);
        kelvosim::signalEvent(Colour, 8);
    }
    return true;
}

/// Whether the program managed to listen to the system's events, or to those of the camera that it opened
/// last.
bool ProgramWay::hears(bool camera)
{
    if (isGone())
        return false;
    const std::vector<kelvosim::Call> calls = kelvosim::log();
    const auto isOf = [camera](const kelvosim::Call &call) { return (call.handle != 0) == camera; };
    const auto enabling = std::find_if(calls.rbegin(), calls.rend(), [&](const kelvosim::Call &call) {
        return call.function == "vx_Event" && call.command == 3 && isOf(call);
    });
    if (enabling == calls.rend() || enabling->result != 0)
        return false;
    // Later the camera may have been closed, or a registration have failed before anything was enabled.
    return std::none_of(calls.rbegin(), enabling, [&](const kelvosim::Call &call) {
        const bool isRegistration = call.function == "vx_Event" && call.command == 1;
        return isOf(call) && (isRegistration || call.function == "vx_ExitCamera");
    });
}

ProgramWay::Entries ProgramWay::entries() const
{
    Entries all;
    if (!window)
        return all;
    const QTableView *table = driver->badpixelTable();
    for (int row = 0; row < table->model()->rowCount(); ++row) {
        all << QString("%1 %2 %3")
                   .arg(WindowDriver::cell(table, row, 0), WindowDriver::cell(table, row, 1),
                        WindowDriver::cell(table, row, 2));
    }
    return all;
}

ProgramWay::Entries ProgramWay::userEntries() const
{
    return entries().filter(" user");
}

void ProgramWay::invoke(const char *slot)
{
    if (!QMetaObject::invokeMethod(window.get(), slot, Qt::DirectConnection))
        qFatal("the window has no slot %s", slot);
}

void ProgramWay::checkEntries(const Step &step, const Entries &before)
{
    const Entries after = entries();
    const auto isIn = [](const Entries &list) {
        return [&list](const QString &entry) { return list.contains(entry); };
    };
    if (!(step.mayChange & MayLose) && !std::all_of(before.begin(), before.end(), isIn(after)))
        find(step.name + " lost entries");
    if (!(step.mayChange & MayAdd) && !std::all_of(after.begin(), after.end(), isIn(before)))
        find(step.name + " added entries");
}

/// The list in the camera changes by a write that succeeds, and then it is the user's.
void ProgramWay::checkStore(const Step &step, const std::vector<kelvosim::Pixel> &before)
{
    const std::vector<kelvosim::Pixel> after = kelvosim::storedUserList(Mono);
    if (equal(after, before))
        return;
    if (!(step.mayChange & MayStore))
        return find(step.name + " changed the stored list");
    Entries stored;
    for (const kelvosim::Pixel &pixel : after)
        stored << QString("%1 %2 user").arg(pixel.x).arg(pixel.y);
    if (stored != userEntries())
        find(step.name + " stored another list than the user's");
}

void ProgramWay::checkHeld()
{
    if (!libraryLies)
        checkBooks();
    if (kelvosim::waitingThreads() > 0)
        find("threads wait after the end");
}

/// Everything that the library gave was handed back, once. What the library refused to take back then is its
/// own business.
void ProgramWay::checkBooks()
{
    const std::vector<kelvosim::Call> calls = kelvosim::log();
    const auto refused = [&](const char *name) {
        return countOf(calls, name, false) - countOf(calls, name, true);
    };
    const auto handedBack = [&](const char *what, const char *take, const char *giveBack, int more = 0) {
        const int taken = countOf(calls, take, true);
        const int returned = countOf(calls, giveBack, false);
        if (taken < returned || taken > returned + more)
            find(QString("%1 %2 were taken, %3 handed back").arg(taken).arg(what).arg(returned));
    };
    handedBack("handles", "vx_InitCamera", "vx_ExitCamera");
    handedBack("buffers", "vx_AllocImageMem", "vx_FreeImageMem");
    handedBack("locks", "vx_LockSeqBuf", "vx_UnlockSeqBuf");
    // A thread that could not be woken was ended by force.
    handedBack("event lists", "vx_Event 3", "vx_Event 2", refused("vx_Event 5"));
    const auto held = [&](const char *what, int count, int most) {
        if (count > most)
            find(QString("%1 %2 are held after the end").arg(count).arg(what));
    };
    held("handles", kelvosim::openHandles(), refused("vx_ExitCamera"));
    held("buffers", kelvosim::allocatedBuffers(), refused("vx_FreeImageMem"));
    held("locked buffers", kelvosim::lockedBuffers(),
         std::min(refused("vx_FreeImageMem"), refused("vx_UnlockSeqBuf")));
}

void ProgramWay::checkWarnings()
{
    const QMutexLocker lock(&warningsMutex);
    for (const QString &warning : warnings)
        find("warning: " + warning);
    warnings.clear();
}
