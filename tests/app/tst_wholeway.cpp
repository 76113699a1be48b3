// SPDX-License-Identifier: MIT
// A person's whole way through the program, on cameras that deliver frames of their own, and under load.

#include "windowfixture.h"

#include "detectiondialogue.h"
#include "displaywidget.h"
#include "residentmemory.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <set>

namespace {

const std::string Serial = "KVLIVE";

} // namespace

class TestWholeWay : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.window.reset(); }

    void fromTheCameraListToACorrectedImage_data();
    void fromTheCameraListToACorrectedImage();
    void fiveHundredFramesASecondLeaveTheWindowAnswering();
    void aHundredOpeningsOfTheWindowLeaveNothingBehind();

private:
    void addLiveCamera(kelvosim::SensorKind kind, int width, int height);
    void openLive();
    void runDetection();
    bool waitForFrames(int count);
    std::set<std::pair<int, int>> listed() const;
    bool isCircledGreen(const QPoint &entry) const;

    WindowFixture bench;
    QTemporaryDir folder;
};

void TestWholeWay::init()
{
    bench.window.reset();
    kelvosim::reset();
    kelvosim::setLogging(false);
    // Without a parameter file a camera starts at one frame a second.
    QVERIFY(QDir::setCurrent(folder.path()));
    QFile file("cameraparameter.xml");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "<CameraSettings><Sensor ID=\"101\"><Timing pixelclock=\"40\" framerate=\"60\" exposure=\"16\"/>"
        "<Gain master=\"50\" red=\"0\" green=\"0\" blue=\"0\"/></Sensor></CameraSettings>");
}

void TestWholeWay::addLiveCamera(kelvosim::SensorKind kind, int width, int height)
{
    kelvosim::CameraSpec spec;
    spec.serial = Serial;
    spec.kind = kind;
    spec.width = width;
    spec.height = height;
    spec.hotPixels = 60;
    kelvosim::addCamera(spec);
    kelvosim::setLensCap(Serial, true);
    bench.showWindow();
}

void TestWholeWay::openLive()
{
    QVERIFY(
        WindowDriver::waitFor([this] { return bench.driver->selectCamera(QString::fromStdString(Serial)); }));
    bench.driver->trigger("openCameraAction");
    QVERIFY(waitForFrames(3));
    QTRY_VERIFY(bench.enabled("detectAction"));
}

bool TestWholeWay::waitForFrames(int count)
{
    const std::uint64_t wanted = kelvosim::completedFrames(Serial) + static_cast<std::uint64_t>(count);
    return WindowDriver::waitFor([=] { return kelvosim::completedFrames(Serial) >= wanted; }, 30000);
}

void TestWholeWay::runDetection()
{
    WindowDriver::whenModal([&](QWidget *dialogue) {
        const auto *buttons = dialogue->findChild<QDialogButtonBox *>();
        const auto *progress = dialogue->findChild<QProgressBar *>();
        int last = 0;
        bool moving = false;
        connect(progress, &QProgressBar::valueChanged, [&](int value) {
            moving = moving || (value > last && value < 100);
            last = value;
        });
        buttons->button(QDialogButtonBox::Ok)->click();
        QTRY_VERIFY_WITH_TIMEOUT(buttons->isEnabled(), 30000);
        QVERIFY(moving);
        QCOMPARE(last, 100);
        QVERIFY(dialogue->isVisible());
        buttons->button(QDialogButtonBox::Close)->click();
    });
    bench.driver->trigger("detectAction");
}

std::set<std::pair<int, int>> TestWholeWay::listed() const
{
    std::set<std::pair<int, int>> all;
    for (int row = 0; row < bench.rows(); ++row)
        all.insert({bench.cell(row, 0).toInt(), bench.cell(row, 1).toInt()});
    return all;
}

/// Whether the view, at 1:1, shows the green of a user entry round this image pixel.
bool TestWholeWay::isCircledGreen(const QPoint &entry) const
{
    const QImage shown = bench.driver->shownImage();
    const QRect circle = QRect(entry - QPoint(4, 4), entry + QPoint(4, 4)).intersected(shown.rect());
    int green = 0;
    for (int y = circle.top(); y <= circle.bottom(); ++y) {
        for (int x = circle.left(); x <= circle.right(); ++x) {
            const QRgb pixel = shown.pixel(x, y);
            green += qGreen(pixel) > qRed(pixel) + 30;
        }
    }
    return green > 5;
}

void TestWholeWay::fromTheCameraListToACorrectedImage_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("width");
    QTest::newRow("mono") << int(kelvosim::SensorKind::Mono) << 320;
    QTest::newRow("raw Bayer") << int(kelvosim::SensorKind::RawBayer) << 320;
}

void TestWholeWay::fromTheCameraListToACorrectedImage()
{
    QFETCH(int, kind);
    QFETCH(int, width);
    const QTemporaryDir storage;
    kelvosim::setStorageFolder(storage.path().toStdString());
    addLiveCamera(static_cast<kelvosim::SensorKind>(kind), width, 240);
    openLive();
    const int factory = bench.rows();
    QVERIFY(factory > 0);

    runDetection();
    QVERIFY(bench.rows() > factory);
    std::set<std::pair<int, int>> planted;
    for (const kelvosim::HotPixel &hot : kelvosim::plantedHotPixels(Serial))
        planted.insert({hot.at.x, hot.at.y});
    const std::set<std::pair<int, int>> found = listed();
    for (const auto &[x, y] : found)
        QVERIFY2(planted.count({x, y}), qPrintable(QString("(%1, %2) was not planted").arg(x).arg(y)));

    // A circle stands round each entry.
    const QPoint entry(bench.cell(factory, 0).toInt(), bench.cell(factory, 1).toInt());
    QTRY_VERIFY(isCircledGreen(entry));

    bench.driver->clickPixel(QPoint(160, 120));
    const int before = bench.rows();
    bench.driver->trigger("addBadpixelAction");
    QCOMPARE(bench.rows(), before + 1);
    QCOMPARE(bench.cell(before, 0) + ',' + bench.cell(before, 1), QString("160,120"));
    bench.driver->badpixelTable()->selectRow(before - 1);
    bench.driver->trigger("deleteBadpixelAction");
    QCOMPARE(bench.rows(), before);

    WindowDriver::answerBox(QMessageBox::Yes);
    bench.driver->trigger("writeListAction");
    QCOMPARE(static_cast<int>(kelvosim::storedUserList(Serial).size()), before - factory);
    const std::set<std::pair<int, int>> written = listed();

    bench.driver->trigger("closeCameraAction");
    QCOMPARE(bench.rows(), 0);
    QTRY_COMPARE(bench.driver->cameraStatus(QString::fromStdString(Serial)), QString("free"));
    openLive();
    QCOMPARE(listed(), written);

    bench.driver->trigger("highlightAction");
    const kelvosim::Pixel hot = kelvosim::factoryList(Serial).front();
    const auto grey = [&] { return qGray(bench.driver->shownImage().pixel(hot.x, hot.y)); };
    QTRY_VERIFY(grey() > 60);
    bench.driver->trigger("correctionAction");
    QTRY_VERIFY(grey() < 30);
    bench.driver->trigger("correctionAction");
    QTRY_VERIFY(grey() > 60);
}

void TestWholeWay::fiveHundredFramesASecondLeaveTheWindowAnswering()
{
    addLiveCamera(kelvosim::SensorKind::Mono, 640, 480);
    kelvosim::overrideFrameRate(Serial, 500.0);
    openLive();
    bench.driver->trigger("zoom4to1Action"); // drawing takes longer than the camera needs for a frame
    QVERIFY(waitForFrames(200));
    const std::int64_t before = residentMemory();

    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    for (int click = 0; click < 10; ++click) {
        const QPoint pixel(20 + 8 * click, 30);
        QTimer::singleShot(0, [&] { bench.driver->clickPixel(pixel); });
        QTRY_VERIFY(!moved.isEmpty() && moved.last().first().toPoint() == pixel);
        QVERIFY(waitForFrames(50));
    }
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(50);
    QVERIFY(waitForFrames(500));
    QVERIFY2(ticks > 3, "timers have their turn");
    const std::int64_t growth = residentMemory() - before;
    QVERIFY2(growth < 40 * 1024 * 1024, qPrintable(QString("grew by %1 bytes").arg(growth)));
    bench.driver->trigger("closeCameraAction");
    QVERIFY(testcamera::nothingHeld());
}

void TestWholeWay::aHundredOpeningsOfTheWindowLeaveNothingBehind()
{
    bench.resetBench();
    kelvosim::setLogging(false);
    for (int round = 0; round < 100; ++round) {
        bench.showWindow();
        bench.open(round % 2 ? bench.bayer : bench.mono);
        QCOMPARE(kelvosim::openHandles(), 1);
        bench.window.reset();
        QVERIFY(testcamera::nothingHeld());
        QCOMPARE(kelvosim::enabledEvents(), 0);
        QCOMPARE(kelvosim::waitingThreads(), 0);
    }
}

QTEST_MAIN(TestWholeWay)
#include "tst_wholeway.moc"
