// SPDX-License-Identifier: MIT
// Cables that are pulled and put back at every moment of a way through the program, in its real window.

#include "app/windowfixture.h"

#include "detectiondialogue.h"
#include "displaywidget.h"
#include "parameterblockwidget.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <random>
#include <thread>

namespace {

const std::string First = "KVFIRST";
const std::string Other = "KVOTHER";
const std::string Stranger = "KVSTRANGER";
constexpr std::uint32_t Port = 3; // device number of the first camera, and of the stranger in its place
constexpr int FramesOfARun = 11;
constexpr int FrameTime = 50;  // milliseconds
constexpr int HangNet = 20000; // milliseconds

kelvosim::CameraSpec camera(const std::string &serial, kelvosim::SensorKind kind)
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.serial = serial;
    spec.kind = kind;
    spec.deviceId = 0;
    return spec;
}

std::vector<std::uint8_t> darkFrame()
{
    std::vector<std::uint8_t> frame(64 * 48, 4);
    frame[7 * 64 + 9] = 200;
    frame[20 * 64 + 30] = 220;
    return frame;
}

/// Runs the event loop until `condition` holds, however long it has nothing to do.
bool waitFor(const std::function<bool()> &condition)
{
    QElapsedTimer timer;
    timer.start();
    QTimer tick;
    tick.start(1);
    while (!condition()) {
        if (timer.elapsed() > HangNet)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

/// Pulls and puts cables while a way is played. A moment is before and after each step, inside of each call
/// of the library that the window makes, and before and after the answer to each dialogue.
class Hand
{
public:
    enum Trick {
        OutAndInAtOnce,
        OutAndInLater,
        OutForGood,
        BothOutAndIn,
        StrangerInItsPlace,
        InAndOutAllTheTime,
        None
    };

    Trick trick = None;
    int at = 0;    // number of the moment at which it happens; of the second one with it comes all the time
    int later = 1; // moments until the cable is back, or until the next pull

    int moments = 0;
    int pulls = 0; // of this hand, in all ways

    void begin()
    {
        moments = 0;
        attached = true;
        stranger = false;
    }

    void moment()
    {
        ++moments;
        if (trick == InAndOutAllTheTime) {
            if (moments % later == at % later)
                setAttached(!attached);
        } else if (moments == at) {
            pull();
        } else if (moments == at + later && trick != OutForGood && !stranger) {
            setAttached(true);
            if (trick == BothOutAndIn)
                kelvosim::plug(Other);
        }
    }

    void setAttached(bool now)
    {
        if (stranger || attached == now)
            return;
        attached = now;
        if (!now)
            ++pulls;
        now ? kelvosim::plug(First) : kelvosim::unplug(First);
    }

    bool hasStranger() const { return stranger; }

private:
    void pull()
    {
        if (trick == BothOutAndIn) {
            kelvosim::unplug(Other);
            ++pulls;
        }
        if (trick != None)
            setAttached(false);
        if (trick == OutAndInAtOnce)
            setAttached(true);
        if (trick != StrangerInItsPlace)
            return;
        kelvosim::removeCamera(First);
        kelvosim::CameraSpec spec = camera(Stranger, kelvosim::SensorKind::Mono);
        spec.deviceId = Port;
        kelvosim::addCamera(spec);
        stranger = true;
    }

    bool attached = true;
    bool stranger = false;
};

/// One way through the program. Nothing in it relies on a cable: what cannot be done is left out, as a person
/// would.
class Way final : public QObject
{
public:
    explicit Way(Hand &handAtTheCables);
    ~Way() override { kelvosim::duringCallsHere({}); }

    void play();

    QStringList findings;
    int steps = 0;     // played so far, in all ways
    int runs = 0;      // of the detection that came to their end
    int dialogues = 0; // that were answered

private:
    enum Change { Nothing = 0, MayAdd = 1, MayLose = 2, MayStore = 4 };

    void addBench();
    void step(const char *name, int mayChange, const std::function<void()> &work);
    void workOnTheList();
    void workOnTheCamera();
    void comeBack();
    void quit();

    void start();
    void refreshList();
    void openCamera(const std::string &serial);
    void pushFrames(int count);
    bool pushFrame();
    void changeSettings();
    void addEntry();
    void deleteLast();
    void chooseFile(const char *action, const char *name);
    void triggerIfEnabled(const char *action);

    bool eventFilter(QObject *watched, QEvent *event) override;
    void meet(QDialog *dialogue);
    void answer(QDialog &dialogue);
    void detect(DetectionDialogue &dialogue);

    void check(int mayChange, const QStringList &before, std::size_t storedBefore);
    void checkClick();
    bool isListRight();
    bool isImageVisible() const;
    std::string openSerial() const;
    std::size_t storedCount() const;
    QStringList entries() const;
    QStringList listed() const;
    void find(const QString &text);

    Hand &hand;
    WindowFixture bench;
    QTemporaryDir folder;
    QString file;
    QString current; // step
    int clicks = 0;
};

Way::Way(Hand &handAtTheCables)
    : hand(handAtTheCables)
{
    QDir::setCurrent(folder.path());
    qApp->installEventFilter(this);
}

void Way::addBench()
{
    bench.window.reset();
    kelvosim::reset();
    kelvosim::CameraSpec first = camera(First, kelvosim::SensorKind::Mono);
    first.factoryList = {{10, 10}, {20, 30}};
    first.deviceId = Port;
    kelvosim::addCamera(first);
    kelvosim::setStoredUserList(First, {{3, 4}, {5, 6}});
    kelvosim::CameraSpec other = camera(Other, kelvosim::SensorKind::RawBayer);
    other.storesLists = false;
    other.firmwareUpload = 1;
    kelvosim::addCamera(other);
    kelvosim::clearLog();
}

void Way::play()
{
    addBench();
    hand.begin();
    kelvosim::duringCallsHere([this] { hand.moment(); });
    step("start", Nothing, [this] { start(); });
    step("list", Nothing, [this] { refreshList(); });
    step("open", MayAdd | MayLose, [this] { openCamera(First); });
    step("live frames", Nothing, [this] { pushFrames(2); });
    step("settings", Nothing, [this] { changeSettings(); });
    step("detect", MayAdd, [this] { triggerIfEnabled("detectAction"); });
    workOnTheList();
    workOnTheCamera();
    comeBack();
    quit();
    kelvosim::duringCallsHere({});
}

void Way::workOnTheList()
{
    step("add", MayAdd, [this] { addEntry(); });
    step("delete", MayLose, [this] { deleteLast(); });
    step("write", MayStore, [this] { triggerIfEnabled("writeListAction"); });
    step("save", Nothing, [this] { chooseFile("saveListAction", "saved.bin"); });
    step("load", MayAdd | MayLose, [this] { chooseFile("loadListAction", "saved.bin"); });
    step("export", Nothing, [this] { chooseFile("exportListAction", "exported.txt"); });
    step("import", MayAdd | MayLose, [this] { chooseFile("importListAction", "exported.txt"); });
    step("clear", MayLose, [this] { triggerIfEnabled("clearBadpixelAction"); });
    step("add again", MayAdd, [this] { addEntry(); });
}

void Way::workOnTheCamera()
{
    step("correction on", Nothing, [this] { triggerIfEnabled("correctionAction"); });
    step("correction off", Nothing, [this] { triggerIfEnabled("correctionAction"); });
    step("statistics", Nothing, [this] { bench.invoke("updateStatus"); });
    step("close", MayLose, [this] { triggerIfEnabled("closeCameraAction"); });
    step("open the other", MayAdd | MayLose, [this] { openCamera(Other); });
    step("its frame", Nothing, [this] { pushFrames(1); });
    step("open the first over it", MayAdd | MayLose, [this] { openCamera(First); });
    step("a last frame", Nothing, [this] { pushFrames(1); });
    step("add a last one", MayAdd, [this] { addEntry(); });
}

/// With the cable back for good everything is as if it had never been pulled.
void Way::comeBack()
{
    if (hand.trick == Hand::OutForGood)
        return;
    kelvosim::duringCallsHere({});
    current = "come back";
    hand.setAttached(true);
    kelvosim::plug(Other);
    if (!waitFor([this] { return isListRight(); }))
        find("the camera list shows " + listed().join(", "));
    if (!openSerial().empty()) {
        // Out and in between two waits are told in any order: then the next frame is what shows it.
        if (!waitFor([this] { return pushFrame() && isImageVisible(); }))
            find("the image of a camera that is back does not show");
    }
    kelvosim::duringCallsHere([this] { hand.moment(); });
}

void Way::quit()
{
    current = "quit";
    hand.moment();
    bench.driver.reset();
    bench.window.reset();
    hand.moment();
    if (!testcamera::nothingHeld() || kelvosim::enabledEvents() != 0 || kelvosim::waitingThreads() != 0)
        find("something is held after the end");
}

void Way::step(const char *name, int mayChange, const std::function<void()> &work)
{
    current = name;
    ++steps;
    hand.moment();
    testcamera::turnEventLoop();
    const QStringList before = entries();
    const std::size_t storedBefore = storedCount();
    work();
    hand.moment();
    testcamera::turnEventLoop();
    check(mayChange, before, storedBefore);
}

void Way::start()
{
    bench.showWindow();
}

void Way::refreshList()
{
    QMetaObject::invokeMethod(bench.driver->cameraTable()->model(), "refresh", Qt::DirectConnection);
}

void Way::openCamera(const std::string &serial)
{
    if (!bench.driver->selectCamera(QString::fromStdString(serial)))
        return;
    triggerIfEnabled("openCameraAction");
}

void Way::pushFrames(int count)
{
    for (int i = 0; i < count && pushFrame(); ++i) {
    }
}

/// A frame that comes together with news of the cable may be taken for one from before, so another follows as
/// from any live camera. @return whether a frame got to the window
bool Way::pushFrame()
{
    const std::string serial = openSerial();
    if (serial.empty() || !kelvosim::pushFrame(serial, darkFrame()))
        return false;
    const int handled = kelvosim::callCount("vx_GetActSeqBuf");
    QElapsedTimer sincePush;
    sincePush.start();
    const bool arrived = waitFor([&] {
        if (sincePush.hasExpired(FrameTime)) {
            kelvosim::pushFrame(serial, darkFrame());
            sincePush.restart();
        }
        return kelvosim::callCount("vx_GetActSeqBuf") > handled;
    });
    if (!arrived)
        find("a frame does not arrive");
    return true;
}

void Way::changeSettings()
{
    const auto *block = bench.window->findChild<ParameterBlockWidget *>();
    for (const DoubleParameterWidget *control : {block->framerate(), block->exposure()}) {
        const double middle = (control->spinBox()->minimum() + control->spinBox()->maximum()) / 2;
        control->spinBox()->setValue(middle);
    }
    block->mastergain()->spinBox()->setValue(33);
}

void Way::addEntry()
{
    if (!bench.enabled("addBadpixelAction"))
        return;
    const int before = bench.rows();
    bench.driver->clickPixel(QPoint(40, 2));
    triggerIfEnabled("addBadpixelAction");
    if (bench.rows() != before + 1)
        find("an entry could not be added");
}

void Way::deleteLast()
{
    if (bench.rows() == 0)
        return;
    bench.driver->badpixelTable()->selectRow(bench.rows() - 1);
    triggerIfEnabled("deleteBadpixelAction");
}

void Way::chooseFile(const char *action, const char *name)
{
    file = folder.filePath(name);
    triggerIfEnabled(action);
}

void Way::triggerIfEnabled(const char *action)
{
    if (bench.enabled(action))
        bench.driver->trigger(action);
}

/// Each dialogue is met once, from inside of its own event loop.
bool Way::eventFilter(QObject *watched, QEvent *event)
{
    auto *dialogue = event->type() == QEvent::Show ? qobject_cast<QDialog *>(watched) : nullptr;
    if (dialogue && dialogue->isModal() && !dialogue->property("met").toBool()) {
        dialogue->setProperty("met", true);
        QTimer::singleShot(0, dialogue, [this, dialogue] { meet(dialogue); });
    }
    return false;
}

void Way::meet(QDialog *dialogue)
{
    ++dialogues;
    hand.moment();
    testcamera::turnEventLoop();
    answer(*dialogue);
    hand.moment();
}

void Way::answer(QDialog &dialogue)
{
    if (auto *detection = qobject_cast<DetectionDialogue *>(&dialogue)) {
        detect(*detection);
    } else if (auto *files = qobject_cast<QFileDialog *>(&dialogue)) {
        files->findChild<QLineEdit *>("fileNameEdit")->setText(file);
        QMetaObject::invokeMethod(files, "accept");
        if (files->isVisible()) // no file was saved before, as no camera was there then
            files->reject();
    } else if (auto *box = qobject_cast<QMessageBox *>(&dialogue)) {
        QAbstractButton *yes = box->button(QMessageBox::Yes);
        (yes ? yes : box->buttons().value(0))->click();
    }
}

/// Starts a run and gives it its frames as long as the cable lets them through; Escape ends it then.
void Way::detect(DetectionDialogue &dialogue)
{
    const auto *buttons = dialogue.findChild<QDialogButtonBox *>();
    buttons->button(QDialogButtonBox::Ok)->click();
    for (int i = 0; i < FramesOfARun; ++i) {
        hand.moment();
        testcamera::turnEventLoop();
        pushFrame();
    }
    const bool ended = buttons->isEnabled();
    QTest::keyClick(&dialogue, Qt::Key_Escape);
    if (dialogue.isVisible())
        find("the detection dialogue stays open");
    runs += ended ? 1 : 0;
}

void Way::check(int mayChange, const QStringList &before, std::size_t storedBefore)
{
    const int handles = kelvosim::openHandles();
    const bool sliders = bench.window->findChild<ParameterBlockWidget *>()->isEnabled();
    if (handles > 1 || sliders != (handles == 1))
        find(QString("%1 cameras are open and the properties are %2").arg(handles).arg(sliders));
    if (kelvosim::lockedBuffers() != 0)
        find("a buffer is left locked");
    const QStringList after = entries();
    const auto isIn = [](const QStringList &list) {
        return [&list](const QString &entry) { return list.contains(entry); };
    };
    if (!(mayChange & MayLose) && !std::all_of(before.begin(), before.end(), isIn(after)))
        find("entries are lost");
    if (!(mayChange & MayAdd) && !std::all_of(after.begin(), after.end(), isIn(before)))
        find("entries came from nowhere");
    if (!(mayChange & MayStore) && storedCount() != storedBefore && !hand.hasStranger())
        find("the stored list changed");
    checkClick();
}

void Way::checkClick()
{
    int moves = 0;
    const auto connection =
        QObject::connect(bench.window.get(), &MainWindow::magnifierPositionChanged, [&] { ++moves; });
    ++clicks;
    bench.driver->clickPixel(QPoint(2 + clicks % 3, 36));
    bench.driver->clickPixel(QPoint(44, 30 + clicks % 3));
    QObject::disconnect(connection);
    if (moves == 0)
        find("the window answers no click");
}

bool Way::isListRight()
{
    refreshList(); // without waiting for the list's timer
    QStringList right;
    for (const std::string &serial : {hand.hasStranger() ? Stranger : First, Other})
        right << QString::fromStdString(serial) + (serial == openSerial() ? " opened" : " free");
    QStringList shown = listed();
    shown.sort();
    right.sort();
    return shown == right;
}

bool Way::isImageVisible() const
{
    return bench.driver->display()->widget()->isVisible();
}

/// Of the camera that is open and can be asked: one that was taken away for good cannot.
std::string Way::openSerial() const
{
    for (const std::string &serial : {hand.hasStranger() ? Stranger : First, Other}) {
        if (kelvosim::exposureTime(serial) > 0.0)
            return serial;
    }
    return std::string();
}

std::size_t Way::storedCount() const
{
    return hand.hasStranger() ? 0 : kelvosim::storedUserList(First).size();
}

QStringList Way::listed() const
{
    const QTableView *table = bench.driver->cameraTable();
    QStringList all;
    for (int row = 0; row < table->model()->rowCount(); ++row)
        all << WindowDriver::cell(table, row, 3) + ' ' + WindowDriver::cell(table, row, 4);
    return all;
}

QStringList Way::entries() const
{
    QStringList all;
    for (int row = 0; bench.window && row < bench.rows(); ++row)
        all << bench.cell(row, 0) + ' ' + bench.cell(row, 1) + ' ' + bench.cell(row, 2);
    return all;
}

void Way::find(const QString &text)
{
    findings << QString("trick %1 at %2, later %3, step '%4': %5")
                    .arg(hand.trick)
                    .arg(hand.at)
                    .arg(hand.later)
                    .arg(current, text);
}

QStringList warnings;

void collectWarning(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    // The platform without a display cannot tell anybody the limits of a window's size.
    if (type != QtDebugMsg && type != QtInfoMsg && !text.contains("propagateSizeHints"))
        warnings << text;
}

/// Every how many moments a cable is pulled; SPECKMEND_STRIDE=1 in the environment for each of them.
int stride()
{
    const int wanted = qEnvironmentVariableIntValue("SPECKMEND_STRIDE");
    return wanted > 0 ? wanted : CABLE_STRIDE;
}

/// The first moment at which it is; SPECKMEND_MOMENT in the environment plays that one alone.
int firstMoment(int trick)
{
    const int wanted = qEnvironmentVariableIntValue("SPECKMEND_MOMENT");
    return wanted > 0 ? wanted : 1 + trick % stride();
}

/// Pulls and puts the first camera's cable, at times of its own, until it is destroyed.
class WobblyCable
{
public:
    explicit WobblyCable(unsigned seed)
        : random(seed)
        , thread([this] { wobble(); })
    {
    }
    ~WobblyCable()
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            over = true;
        }
        changed.notify_all();
        thread.join();
    }
    std::atomic<int> pulls{0};

private:
    void wobble()
    {
        std::unique_lock<std::mutex> lock(mutex);
        for (bool in = true; !over; in = !in) {
            const auto pause = std::chrono::microseconds(random() % 3000);
            changed.wait_for(lock, pause, [this] { return over; });
            try {
                in ? kelvosim::plug(First) : kelvosim::unplug(First);
                pulls += in ? 0 : 1;
            } catch (const std::invalid_argument &) {
                // the bench is just being built
            }
        }
    }

    std::mt19937 random;
    std::mutex mutex; // guards over
    std::condition_variable changed;
    bool over = false;
    std::thread thread;
};

} // namespace

class TestCables : public QObject
{
    Q_OBJECT

private slots:
    void init() { previous = qInstallMessageHandler(collectWarning); }
    void cleanup();

    void aWayWithoutACableTrickIsWhole();
    void aCableIsPulledAtEachMoment_data();
    void aCableIsPulledAtEachMoment();
    void aCableIsPulledAgainAndAgain();
    void aCableWobblesAtTimesOfItsOwn();
    void aCableThatSlipsForAMomentLeavesTheImage();
    void aFrameFromBeforeTheCableWasPulledShowsNothing();
    void aFirmwareUploadIsCutShort();
    void cleanupTestCase();

private:
    void report(const char *what, const Way &way);

    QtMessageHandler previous = nullptr;
    int pulls = 0;
    int ways = 0;
    int steps = 0;
};

void TestCables::cleanup()
{
    kelvosim::duringCallsHere({});
    qInstallMessageHandler(previous);
}

void TestCables::report(const char *what, const Way &way)
{
    steps += way.steps;
    std::printf("%s: %d ways and %d cables pulled so far, %d findings\n", what, ways, pulls,
                static_cast<int>(way.findings.size()));
    std::fflush(stdout);
    QVERIFY2(way.findings.isEmpty(), qPrintable(way.findings.mid(0, 20).join('\n')));
    QVERIFY2(warnings.isEmpty(), qPrintable(warnings.mid(0, 20).join('\n')));
}

void TestCables::aWayWithoutACableTrickIsWhole()
{
    Hand hand;
    Way way(hand);
    way.play();
    ++ways;
    std::printf("%d moments a way\n", hand.moments);
    QVERIFY(hand.moments > 500);
    QCOMPARE(way.runs, 1);
    QCOMPARE(way.dialogues, 7); // detection, write, four files, a camera that stores no lists
    QVERIFY(QFile("saved.bin").size() > 20);
    QVERIFY(QFile("exported.txt").size() > 0);
    report("whole", way);
}

void TestCables::aCableIsPulledAtEachMoment_data()
{
    QTest::addColumn<int>("trick");
    QTest::addColumn<int>("later");
    QTest::newRow("out and in at once") << int(Hand::OutAndInAtOnce) << 1;
    QTest::newRow("back at the next moment") << int(Hand::OutAndInLater) << 1;
    QTest::newRow("back after a while") << int(Hand::OutAndInLater) << 40;
    QTest::newRow("never back") << int(Hand::OutForGood) << 1;
    QTest::newRow("both cameras") << int(Hand::BothOutAndIn) << 3;
    QTest::newRow("another camera in its place") << int(Hand::StrangerInItsPlace) << 1;
}

void TestCables::aCableIsPulledAtEachMoment()
{
    QFETCH(int, trick);
    QFETCH(int, later);
    Hand hand;
    Way way(hand);
    hand.trick = static_cast<Hand::Trick>(trick);
    hand.later = later;
    const int first = firstMoment(trick);
    const bool alone = qEnvironmentVariableIsSet("SPECKMEND_MOMENT");
    hand.at = first;
    do {
        way.play();
        ++ways;
        hand.at += stride();
    } while (!alone && hand.at <= hand.moments);
    pulls += hand.pulls;
    report(QTest::currentDataTag(), way);
}

void TestCables::aCableIsPulledAgainAndAgain()
{
    Hand hand;
    Way way(hand);
    hand.trick = Hand::InAndOutAllTheTime;
    // A refresh of the camera list has four moments: pulled more often, the cable would call for the next one
    // in each.
    for (hand.later = 5; hand.later <= 60; hand.later += stride()) {
        for (hand.at = 0; hand.at < hand.later; hand.at += (hand.later + 1) / 2) {
            way.play();
            ++ways;
        }
    }
    pulls += hand.pulls;
    report("again and again", way);
}

void TestCables::aCableWobblesAtTimesOfItsOwn()
{
    Hand hand;
    Way way(hand);
    const unsigned seed = std::random_device()();
    std::printf("seed %u\n", seed);
    std::fflush(stdout);
    WobblyCable cable(seed);
    for (int round = 0; round < qMax(2, 200 / stride()); ++round) {
        way.play();
        ++ways;
    }
    pulls += cable.pulls;
    report("of its own", way);
}

/// Waits without the event loop until the event threads have come back to a wait this often.
void awaitWaits(int count)
{
    while (kelvosim::callCount("vx_Event", 7) < count)
        std::this_thread::yield();
}

void TestCables::aCableThatSlipsForAMomentLeavesTheImage()
{
    WindowFixture bench;
    bench.openOnFreshBench(bench.mono);
    const QWidget *image = bench.driver->display()->widget();
    QTRY_COMPARE(kelvosim::waitingThreads(), 2);
    // Out and in again while the thread is busy: it hears of both at once, in whatever order.
    kelvosim::blockCall("vx_Event", 7);
    QVERIFY(bench.pushFlat(bench.mono, 90));
    QTRY_COMPARE(kelvosim::blockedCalls(), 1);
    kelvosim::unplug(bench.mono.toStdString());
    kelvosim::plug(bench.mono.toStdString());
    kelvosim::releaseCalls();
    QTRY_VERIFY(!image->isVisible()); // back and then gone
    QVERIFY(bench.pushFlat(bench.mono, 90));
    QTRY_VERIFY(image->isVisible());
}

void TestCables::aFrameFromBeforeTheCableWasPulledShowsNothing()
{
    WindowFixture bench;
    bench.openOnFreshBench(bench.mono);
    QTRY_COMPARE(kelvosim::waitingThreads(), 2);
    testcamera::turnEventLoop();
    const int waits = kelvosim::callCount("vx_Event", 7);
    for (int i = 1; i <= 2; ++i) {
        QVERIFY(bench.pushFlat(bench.mono, 90)); // the second one is held back
        awaitWaits(waits + i);
    }
    kelvosim::unplug(bench.mono.toStdString());
    awaitWaits(waits + 4); // the camera's event and the system's
    testcamera::turnEventLoop();
    QVERIFY(!bench.driver->display()->widget()->isVisible());
}

/// The window is held up in the library meanwhile, so another thread pulls.
void TestCables::aFirmwareUploadIsCutShort()
{
    WindowFixture bench;
    bench.resetBench();
    kelvosim::CameraSpec spec = WindowFixture::spec();
    spec.serial = "KVUPLOAD";
    spec.firmwareUpload = 60000;
    kelvosim::addCamera(spec);
    bench.showWindow();
    std::thread puller([] {
        while (kelvosim::callCount("vx_InitCamera") < 2)
            std::this_thread::yield();
        kelvosim::unplug("KVUPLOAD");
    });
    bench.open("KVUPLOAD");
    puller.join();
    QCOMPARE(bench.driver->message(), QString("Could not initialize camera."));
    QVERIFY(testcamera::nothingHeld());
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 3);
    bench.open(bench.mono);
    QCOMPARE(kelvosim::openHandles(), 1);
}

void TestCables::cleanupTestCase()
{
    std::printf("cables pulled: %d, ways: %d, steps: %d\n", pulls, ways, steps);
}

int main(int argc, char **argv)
{
    qputenv("QTEST_FUNCTION_TIMEOUT", "7200000"); // each wait of a way has its own net
    QApplication application(argc, argv);
    TestCables test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_cables.moc"
