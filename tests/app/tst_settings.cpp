// SPDX-License-Identifier: MIT
// Camera properties and magnifier in the real window: ranges, feedback at opening, the parameter file, the
// focus.

#include "windowfixture.h"

#include "displaywidget.h"
#include "doubleparameterwidget.h"
#include "magnifier.h"
#include "magnifiercontrol.h"
#include "parameterblockwidget.h"
#include "parameterwidget.h"

#include <QDir>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const std::string Serial = "KVLIVE";

/// A complete entry for the bench's sensors.
const char *const ParameterFile = R"(<?xml version="1.0"?>
<CameraSettings>
  <Sensor ID="101">
    <Timing pixelclock="30" framerate="25" exposure="10"/>
    <Gain master="%1" red="0" green="0" blue="0"/>
  </Sensor>
</CameraSettings>
)";

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theCameraPropertiesAreDisabledWithoutACamera();
    void theControlsShowTheCamerasRanges();
    void theFeedbackAtOpeningEndsInTheBusyFlags();
    void aMissingParameterFileIsToldOfAndDefaultsApply();
    void theParameterFilesValuesApplyAtTheNextOpen();
    void correctionIsSetBeforeTheParameterFileApplies();
    void aTypedExposureIsReportedOnceAtEnter();
    void aDraggedFrameRateIsReportedOnceAtRelease();
    void closingDropsWhatWasTypedButNotEntered();
    void eachControlFollowsItsOwnSetting();
    void aLongerExposureMakesTheImageBrighter();
    void moreGainMakesTheImageBrighter();
    void aLowerFrameRateSlowsTheCamera();
    void docksHaveTitlesNamesAndAreas();
    void theMagnifierShowsTheFramesPixelsAndTheirColour();
    void arrowKeysWalkTheFocusAndEverythingFollows();
    void aClickBesideTheCentreWalksTheFocus();
    void theFocusStaysInTheImage();
    void closingEmptiesTheMagnifier();
    void theMagnifierGetsTheFrameBeforeTheView();
    void aDestroyedMagnifierDockLeavesAProgramThatGoesOn();
    void aDestroyedPropertiesDockLeavesAProgramThatGoesOn();

private:
    void openLive();
    static void writeParameterFile(int masterGain = 0);
    double lastNumber(const std::string &function) const;
    static kelvo::Handle openHandle();
    ParameterBlockWidget *block() const { return bench.window->findChild<ParameterBlockWidget *>(); }
    MagnifierControl *magnifierControl() const { return bench.window->findChild<MagnifierControl *>(); }
    Magnifier *magnifier() const { return magnifierControl()->magnifier(); }
    bool magnifierShows(const QString &text) const;
    int brightness() const;

    WindowFixture bench;
    std::unique_ptr<QTemporaryDir> folder;
};

void TestSettings::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(folder->path()));
    bench.resetBench();
    kelvosim::CameraSpec live = WindowFixture::spec();
    live.serial = Serial;
    live.freeRunning = true;
    kelvosim::addCamera(live);
    bench.showWindow();
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 4);
}

void TestSettings::cleanup()
{
    bench.window.reset();
    QDir::setCurrent(QDir::rootPath());
}

void TestSettings::writeParameterFile(int masterGain)
{
    QFile file("cameraparameter.xml");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(ParameterFile).replace("%1", QByteArray::number(masterGain)));
}

/// The handle of the camera that the window has open, read from its calls.
kelvo::Handle TestSettings::openHandle()
{
    kelvo::Handle handle = kelvo::NoCamera;
    for (const kelvosim::Call &call : kelvosim::log()) {
        if (call.function == "vx_CaptureVideo")
            handle = call.handle;
    }
    return handle;
}

/// The first number that the last call of a function was given by this thread.
double TestSettings::lastNumber(const std::string &function) const
{
    double number = -1.0;
    for (const kelvosim::Call &call : kelvosim::log()) {
        if (call.function == function && !call.numbers.empty())
            number = call.numbers.front();
    }
    return number;
}

void TestSettings::openLive()
{
    writeParameterFile();
    bench.open(QString::fromStdString(Serial));
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
}

bool TestSettings::magnifierShows(const QString &text) const
{
    for (const QLabel *label : magnifierControl()->findChildren<QLabel *>()) {
        if (label->text() == text)
            return true;
    }
    return false;
}

/// The mean grey value of what the view shows.
int TestSettings::brightness() const
{
    const QImage shown = bench.driver->shownImage();
    std::int64_t sum = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x)
            sum += qGray(shown.pixel(x, y));
    }
    return static_cast<int>(sum / qMax(1, shown.width() * shown.height()));
}

void TestSettings::theCameraPropertiesAreDisabledWithoutACamera()
{
    QVERIFY(!block()->isEnabled());
    bench.open(bench.mono);
    QVERIFY(block()->isEnabled());
    bench.driver->trigger("closeCameraAction");
    QVERIFY(!block()->isEnabled());
}

void TestSettings::theControlsShowTheCamerasRanges()
{
    writeParameterFile();
    bench.open(bench.mono);
    double min = 0.0;
    double max = 0.0;
    double step = 0.0;
    const kelvo::Handle handle = openHandle();
    QCOMPARE(vx_GetExposureRange(handle, &min, &max, &step), 0);
    QCOMPARE(block()->exposure()->spinBox()->minimum(), qRound(min * 100) / 100.0);
    QCOMPARE(block()->exposure()->spinBox()->maximum(), qRound(max * 100) / 100.0);
    QCOMPARE(vx_GetFrameTimeRange(handle, &min, &max, &step), 0);
    QCOMPARE(block()->framerate()->spinBox()->minimum(), qRound(100 / max) / 100.0);
    QCOMPARE(block()->framerate()->spinBox()->maximum(), qRound(100 / min) / 100.0);
    QCOMPARE(block()->mastergain()->spinBox()->minimum(), 0);
    QCOMPARE(block()->mastergain()->spinBox()->maximum(), 100);
}

/// The controls rise from their old range and report each value on the way; the camera takes it, announces it
/// again, and finds its own flag set when it comes back.
void TestSettings::theFeedbackAtOpeningEndsInTheBusyFlags()
{
    bench.driver->selectCamera(bench.mono);
    kelvosim::clearLog();
    bench.driver->trigger("openCameraAction");
    QStringList calls = testcamera::calls();
    calls.replaceInStrings(QRegularExpression("^(vx_Set(PixelClock|ExposureTime)) (?!3276[89]).*"),
                           "\\1 value");
    const int first = calls.indexOf("vx_SetPixelClock 32768") + 1;
    const int last = calls.indexOf("vx_SetHardwareGain 32768");
    const QStringList expected{
        "vx_GetFrameTimeRange",     "vx_SetFrameRate", // the frame rate is read and announced
        "vx_SetFrameRate",                             // its control reports the new minimum
        "vx_GetExposureRange",      "vx_SetExposureTime 32768",
        "vx_SetExposureTime value", // so the exposure follows
        "vx_SetExposureTime value", // and is reported in turn
        "vx_GetExposureRange",      "vx_SetExposureTime 32768",
        "vx_SetExposureTime value", // the reading goes on
        "vx_SetExposureTime value"};
    QCOMPARE(calls.mid(first, last - first), expected);
}

void TestSettings::aMissingParameterFileIsToldOfAndDefaultsApply()
{
    bench.open(bench.mono);
    QCOMPARE(bench.driver->message(), QString("Can't open camera parameter file."));
    QCOMPARE(block()->mastergain()->spinBox()->value(), 50);
}

void TestSettings::theParameterFilesValuesApplyAtTheNextOpen()
{
    const QString serial = QString::fromStdString(Serial);
    bench.open(serial);
    QCOMPARE(block()->mastergain()->spinBox()->value(), 50);
    bench.driver->trigger("closeCameraAction");
    QTRY_COMPARE(bench.driver->cameraStatus(serial), QString("free"));
    bench.window->statusBar()->clearMessage();

    writeParameterFile(30);
    kelvosim::clearLog();
    bench.open(serial);
    QVERIFY(bench.driver->message().isEmpty());
    QCOMPARE(block()->mastergain()->spinBox()->value(), 30);
    QVERIFY(testcamera::calls().contains("vx_SetPixelClock 30"));
    QVERIFY(testcamera::calls().contains("vx_SetHardwareGain 30"));
    QCOMPARE(lastNumber("vx_SetFrameRate"), 25.0);
    QVERIFY(qAbs(block()->framerate()->spinBox()->value() - 25.0) < 0.5);
    QVERIFY(qAbs(kelvosim::exposureTime(Serial) - 10.0) < 0.1);
    QVERIFY(qAbs(block()->exposure()->spinBox()->value() - 10.0) < 0.5);
}

void TestSettings::correctionIsSetBeforeTheParameterFileApplies()
{
    writeParameterFile(30);
    bench.driver->action("correctionAction")->setChecked(true);
    kelvosim::clearLog();
    bench.open(bench.mono);
    const QStringList calls = testcamera::calls();
    const int read = calls.indexOf("vx_SetHardwareGain 32768");
    const int corrected = calls.indexOf("vx_HotPixel 2");
    const int applied = calls.indexOf("vx_SetPixelClock 30");
    QVERIFY(read > 0);
    QVERIFY(read < corrected);
    QVERIFY(corrected < applied);
}

void TestSettings::aTypedExposureIsReportedOnceAtEnter()
{
    openLive();
    auto *box = block()->exposure()->spinBox();
    bench.window->activateWindow();
    box->setFocus();
    box->selectAll();
    kelvosim::clearLog();
    QTest::keyClicks(box, "20.5");
    QVERIFY(testcamera::calls().filter("vx_SetExposureTime").isEmpty());
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(testcamera::calls().filter("vx_SetExposureTime").size(), 1);
    QVERIFY(qAbs(kelvosim::exposureTime(Serial) - 20.5) < 0.5);
}

void TestSettings::aDraggedFrameRateIsReportedOnceAtRelease()
{
    openLive();
    QSlider *slider = block()->framerate()->slider();
    kelvosim::clearLog();
    slider->setSliderDown(true);
    for (int step = 1; step <= 5; ++step)
        slider->setSliderPosition(slider->maximum() * step / 6);
    QVERIFY(testcamera::calls().filter("vx_SetFrameRate").isEmpty());
    const double shown = block()->framerate()->spinBox()->value();
    slider->setSliderDown(false);
    QCOMPARE(testcamera::calls().filter("vx_SetFrameRate").size(), 1);
    QCOMPARE(lastNumber("vx_SetFrameRate"), shown);
}

void TestSettings::closingDropsWhatWasTypedButNotEntered()
{
    openLive();
    auto *box = block()->framerate()->spinBox();
    bench.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(bench.window.get()));
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, "20");
    kelvosim::clearLog();
    bench.driver->trigger("closeCameraAction");
    QVERIFY(testcamera::calls().filter("vx_SetFrameRate").isEmpty());
    QVERIFY(testcamera::nothingHeld());
}

void TestSettings::eachControlFollowsItsOwnSetting()
{
    openLive();
    const double rate = block()->framerate()->spinBox()->value();
    const double exposure = block()->exposure()->spinBox()->value();
    block()->mastergain()->spinBox()->setValue(44);
    QCOMPARE(block()->framerate()->spinBox()->value(), rate);
    QCOMPARE(block()->exposure()->spinBox()->value(), exposure);
    block()->exposure()->spinBox()->setValue(5.0);
    QCOMPARE(block()->framerate()->spinBox()->value(), rate);
    QCOMPARE(block()->mastergain()->spinBox()->value(), 44);
    // The frame rate bounds the exposure, whose control follows.
    block()->framerate()->spinBox()->setValue(200.0);
    QVERIFY(block()->exposure()->spinBox()->maximum() < 6.0);
    QCOMPARE(block()->mastergain()->spinBox()->value(), 44);
}

void TestSettings::aLongerExposureMakesTheImageBrighter()
{
    openLive();
    const int before = brightness();
    block()->exposure()->spinBox()->setValue(20.0);
    QTRY_VERIFY(kelvosim::exposureTime(Serial) > 18.0);
    QTRY_VERIFY2(brightness() > before * 3 / 2,
                 qPrintable(QString("%1, was %2").arg(brightness()).arg(before)));
}

void TestSettings::moreGainMakesTheImageBrighter()
{
    openLive();
    const int before = brightness();
    block()->mastergain()->spinBox()->setValue(50);
    QTRY_VERIFY2(brightness() > before * 3 / 2,
                 qPrintable(QString("%1, was %2").arg(brightness()).arg(before)));
}

void TestSettings::aLowerFrameRateSlowsTheCamera()
{
    openLive();
    block()->framerate()->spinBox()->setValue(200.0);
    const auto measured = [] {
        double rate = 0.0;
        vx_GetFramesPerSecond(openHandle(), &rate);
        return rate;
    };
    QVERIFY(QTest::qWaitFor([&] { return measured() > 60.0; }));
    block()->framerate()->spinBox()->setValue(20.0);
    int slow = 0; // looks in a row: on a busy machine a single frame may be late at any rate
    QVERIFY(QTest::qWaitFor([&] {
        slow = measured() < 30.0 ? slow + 1 : 0;
        return slow == 10;
    }));
}

void TestSettings::docksHaveTitlesNamesAndAreas()
{
    auto *magnifierDock = bench.window->findChild<QDockWidget *>("MagnifierDock");
    auto *propertiesDock = bench.window->findChild<QDockWidget *>("CameraSliderDock");
    QCOMPARE(magnifierDock->windowTitle(), QString("Magnifier"));
    QCOMPARE(magnifierDock->allowedAreas(), Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    QCOMPARE(propertiesDock->windowTitle(), QString("Camera properties"));
    QCOMPARE(propertiesDock->allowedAreas(), Qt::DockWidgetAreas(Qt::AllDockWidgetAreas));
    for (QDockWidget *dock : {magnifierDock, propertiesDock})
        QCOMPARE(bench.window->dockWidgetArea(dock), Qt::LeftDockWidgetArea);
    const QPair<const char *, QDockWidget *> toggles[] = {{"showMagnifierAction", magnifierDock},
                                                          {"showCameraSliderAction", propertiesDock}};
    for (const auto &[action, dock] : toggles) {
        QTRY_VERIFY(dock->isVisible());
        bench.driver->trigger(action);
        QVERIFY(!dock->isVisible());
        emit bench.window->menuBar()->actions().at(1)->menu()->aboutToShow();
        QVERIFY(!bench.driver->action(action)->isChecked());
        bench.driver->trigger(action);
        QVERIFY(dock->isVisible());
    }
}

void TestSettings::theMagnifierShowsTheFramesPixelsAndTheirColour()
{
    writeParameterFile();
    bench.open(bench.bayer);
    std::vector<std::uint8_t> frame = WindowFixture::flatFrame(10);
    frame[41 * 96 + 40] = 200;
    bench.push(bench.bayer, frame);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    const QPair<QPoint, const char *> pixels[] = {
        {{40, 41}, "G"}, {{40, 40}, "R"}, {{41, 41}, "B"}, {{41, 40}, "G"}};
    for (const auto &[pixel, colour] : pixels) {
        bench.moveTo(pixel);
        QVERIFY2(magnifierShows(colour), colour);
        QVERIFY(magnifierShows(pixel == QPoint(40, 41) ? "200" : "10"));
    }
}

void TestSettings::arrowKeysWalkTheFocusAndEverythingFollows()
{
    writeParameterFile();
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 30);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    bench.moveTo(QPoint(9, 11));
    bench.driver->badpixelTable()->clearSelection();
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    QTest::keyClick(magnifier(), Qt::Key_Right);
    QCOMPARE(moved.last().first().toPoint(), QPoint(10, 11));
    QTest::keyClick(magnifier(), Qt::Key_Up);
    QCOMPARE(moved.last().first().toPoint(), QPoint(10, 10));
    // A factory entry lies there: it is selected, and the cross-hair runs through it.
    const QModelIndexList selected = bench.driver->badpixelTable()->selectionModel()->selectedIndexes();
    QVERIFY(!selected.isEmpty());
    QCOMPARE(selected.first().row(), 0);
    bench.driver->display()->redrawImage();
    const QRgb crossed = bench.driver->shownImage().pixel(10, 70);
    QVERIFY(qRed(crossed) > qGreen(crossed));
    QTest::keyClick(magnifier(), Qt::Key_Left);
    QTest::keyClick(magnifier(), Qt::Key_Down);
    QCOMPARE(moved.last().first().toPoint(), QPoint(9, 11));
}

void TestSettings::aClickBesideTheCentreWalksTheFocus()
{
    writeParameterFile();
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 30);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    bench.moveTo(QPoint(50, 50));
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    const QPoint centre(magnifier()->width() / 2, magnifier()->height() / 2);
    QTest::mouseClick(magnifier(), Qt::LeftButton, Qt::NoModifier, centre + QPoint(30, 0));
    QCOMPARE(moved.last().first().toPoint(), QPoint(51, 50));
    QTest::mouseClick(magnifier(), Qt::LeftButton, Qt::NoModifier, centre);
    QCOMPARE(moved.last().first().toPoint(), QPoint(51, 50));
}

void TestSettings::theFocusStaysInTheImage()
{
    writeParameterFile();
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 30);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    bench.moveTo(QPoint(0, 0));
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    QTest::keyClick(magnifier(), Qt::Key_Left);
    QCOMPARE(moved.last().first().toPoint(), QPoint(0, 0));
    bench.moveTo(QPoint(95, 79));
    QTest::keyClick(magnifier(), Qt::Key_Down);
    QCOMPARE(moved.last().first().toPoint(), QPoint(95, 79));
}

void TestSettings::closingEmptiesTheMagnifier()
{
    openLive();
    const auto picture = [this] { return magnifier()->property("pixmap").value<QPixmap>(); };
    QTRY_VERIFY(!picture().isNull());
    bench.driver->trigger("closeCameraAction");
    QVERIFY(picture().isNull());
}

void TestSettings::theMagnifierGetsTheFrameBeforeTheView()
{
    writeParameterFile();
    bench.open(bench.mono);
    bench.moveTo(QPoint(50, 50));
    // The view still shows nothing, or the old frame, when the magnifier reports the new one's pixel.
    QImage shownThen(1, 1, QImage::Format_RGB32);
    connect(magnifier(), &Magnifier::pixelInfoChanged, this, [&] { shownThen = bench.driver->shownImage(); });
    bench.pushFlat(bench.mono, 77);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    QVERIFY(shownThen.isNull());
}

void TestSettings::aDestroyedMagnifierDockLeavesAProgramThatGoesOn()
{
    openLive();
    delete bench.window->findChild<QDockWidget *>("MagnifierDock");
    const std::uint64_t frames = kelvosim::completedFrames(Serial);
    QTRY_VERIFY(kelvosim::completedFrames(Serial) > frames + 3);
    bench.moveTo(QPoint(10, 10));
    emit bench.window->menuBar()->actions().at(1)->menu()->aboutToShow();
    bench.driver->trigger("showMagnifierAction");
    bench.driver->trigger("closeCameraAction");
    QVERIFY(testcamera::nothingHeld());
}

void TestSettings::aDestroyedPropertiesDockLeavesAProgramThatGoesOn()
{
    openLive();
    delete bench.window->findChild<QDockWidget *>("CameraSliderDock");
    bench.driver->trigger("showCameraSliderAction");
    bench.driver->trigger("closeCameraAction");
    QTRY_COMPARE(bench.driver->cameraStatus(QString::fromStdString(Serial)), QString("free"));
    bench.open(QString::fromStdString(Serial));
    QCOMPARE(kelvosim::openHandles(), 1);
}

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
