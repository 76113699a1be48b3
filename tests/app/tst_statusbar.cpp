// SPDX-License-Identifier: MIT
// The status bar: counts of entries and frames, the focus, and messages with the time that each is shown.

#include "windowfixture.h"

#include "badpixellistmodel.h"
#include "magnifier.h"
#include "magnifiercontrol.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTimer>
#include <QTranslator>
#include <QtTest>

#include <algorithm>

namespace {

const char *const LabelNames[] = {"userCountLabel", "factoryCountLabel", "xLabel",        "yLabel",
                                  "framesLabel",    "failedLabel",       "frameRateLabel"};

/// Marks whatever is translated.
class MarkingTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        return QString("[%1]").arg(text);
    }
};

} // namespace

class TestStatusBar : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void labelsStandInOrder();
    void labelsWereMadeWithThePositionFirst();
    void labelsAreEmptyAtFirst();
    void theTimerIsTheWindowsOwnAndRests();
    void theFirstTickAfterOpeningFillsTheCounts();
    void ticksGoOnWhileTheCameraIsOpen();
    void framesAreCounted();
    void failedFramesAreCounted();
    void theFrameRateHasTwoDecimals();
    void aCameraThatReportsNoFrameRateShowsZeroWithDecimals();
    void ignoredEntriesCountAsTheFactorys();
    void closingResetsTheFramesAndKeepsTheCountsOfEntries();
    void closingFromAnotherRowChangesNothing();
    void theTimerRunsFromOpeningToClosing();
    void aCameraThatCannotBeOpenedStartsNoTimer();
    void theTimerStartsUnlessOpeningFails();
    void aFailureAfterOpeningLeavesTheTimerOfTheCameraBeforeRunning();
    void aDisconnectLeavesTheTimerRunning();
    void thePositionFollowsClicksKeysAndSelection();
    void anErrorOfTheCameraIsShownForItsTime();
    void aFailedOpenIsShownForFiveSeconds();
    void aReducedImageIsAnnouncedForTwoSeconds();
    void aFailedDeviceListIsShownForTwoSeconds();
    void countersAreNotTranslated();

private:
    QLabel *label(const char *name) const { return bar()->findChild<QLabel *>(name); }
    QString text(const char *name) const { return label(name)->text(); }
    QStringList texts() const;
    QStatusBar *bar() const { return bench.window->statusBar(); }
    QTimer *statisticsTimer() const;
    int messageMilliseconds() const;
    void openLive(double framesPerSecond);
    static double reportedFrameRate();

    WindowFixture bench;
};

void TestStatusBar::init()
{
    bench.resetBench();
    bench.showWindow();
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 3);
}

void TestStatusBar::cleanup()
{
    bench.window.reset();
}

QStringList TestStatusBar::texts() const
{
    QStringList all;
    for (const char *name : LabelNames)
        all << text(name);
    return all;
}

QTimer *TestStatusBar::statisticsTimer() const
{
    const auto timers = bench.window->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    if (timers.size() != 1)
        qFatal("the window has %d timers instead of one", timers.size());
    return timers.first();
}

/// How long the message that is shown stays; -1 when no timer takes it away.
int TestStatusBar::messageMilliseconds() const
{
    const auto *timer = bar()->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    return timer && timer->isActive() ? timer->interval() : -1;
}

/// Opens a camera that delivers by itself.
void TestStatusBar::openLive(double framesPerSecond)
{
    kelvosim::CameraSpec live = WindowFixture::spec();
    live.serial = "KVLIVE";
    live.freeRunning = true;
    kelvosim::addCamera(live);
    kelvosim::overrideFrameRate("KVLIVE", framesPerSecond);
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 4);
    bench.open("KVLIVE");
    QTRY_VERIFY(kelvosim::completedFrames("KVLIVE") > 3);
}

/// What the library tells of the camera that was opened last.
double TestStatusBar::reportedFrameRate()
{
    kelvo::Handle handle = kelvo::NoCamera;
    for (const kelvosim::Call &call : kelvosim::log()) {
        if (call.function == "vx_CaptureVideo")
            handle = call.handle;
    }
    double rate = 0.0;
    vx_GetFramesPerSecond(handle, &rate);
    return rate;
}

void TestStatusBar::labelsStandInOrder()
{
    bench.window->resize(1180, 760); // more width than the labels need
    QTRY_VERIFY(label("frameRateLabel")->isVisible() && label("frameRateLabel")->x() > 800);
    QList<QLabel *> labels = bar()->findChildren<QLabel *>();
    std::sort(labels.begin(), labels.end(), [](QLabel *a, QLabel *b) { return a->x() < b->x(); });
    const int widths[] = {40, 40, 44, 44, 64, 64, 72};
    QCOMPARE(labels.size(), 7);
    for (int i = 0; i < 7; ++i) {
        QCOMPARE(labels[i]->objectName(), QString(LabelNames[i]));
        QCOMPARE(labels[i]->parent(), bar());
        QCOMPARE(labels[i]->minimumWidth(), widths[i]);
        QCOMPARE(labels[i]->width(), widths[i]); // none takes a share of what is left over
        QVERIFY(labels[i]->x() > bar()->width() / 2);
    }
    // Permanent ones stay beside a message.
    bar()->showMessage("a message");
    for (const QLabel *each : qAsConst(labels))
        QVERIFY(each->isVisible());
}

void TestStatusBar::labelsWereMadeWithThePositionFirst()
{
    QStringList names;
    for (const QLabel *each : bar()->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly))
        names << each->objectName();
    QCOMPARE(names, (QStringList{"xLabel", "yLabel", "userCountLabel", "factoryCountLabel", "framesLabel",
                                 "failedLabel", "frameRateLabel"}));
}

void TestStatusBar::labelsAreEmptyAtFirst()
{
    QCOMPARE(texts().join(QString()), QString());
}

void TestStatusBar::theTimerIsTheWindowsOwnAndRests()
{
    QVERIFY(!statisticsTimer()->isActive());
    QVERIFY(!statisticsTimer()->isSingleShot());
}

void TestStatusBar::theFirstTickAfterOpeningFillsTheCounts()
{
    kelvosim::setStoredUserList("KVMONO", {{50, 60}, {51, 60}, {52, 60}});
    bench.open(bench.mono);
    // Opening tells the focus alone; the counts wait for the tick.
    QCOMPARE(texts(), (QStringList{"", "", "x: 0", "y: 0", "", "", ""}));
    QTRY_VERIFY(!text("userCountLabel").isEmpty());
    QCOMPARE(texts().mid(0, 6), (QStringList{"U: 3", "F: 2", "x: 0", "y: 0", "Frames: 0", "Failed: 0"}));
    static const QRegularExpression rate("^FPS: \\d+\\.\\d\\d$");
    QVERIFY(rate.match(text("frameRateLabel")).hasMatch());
}

void TestStatusBar::ticksGoOnWhileTheCameraIsOpen()
{
    bench.open(bench.mono);
    QSignalSpy ticks(statisticsTimer(), &QTimer::timeout);
    QTRY_COMPARE_WITH_TIMEOUT(ticks.count(), 1, 20000);
    QCOMPARE(text("userCountLabel"), QString("U: 0"));
    bench.moveTo(QPoint(33, 44));
    bench.driver->trigger("addBadpixelAction");
    QCOMPARE(text("userCountLabel"), QString("U: 0"));
    QTRY_COMPARE_WITH_TIMEOUT(ticks.count(), 2, 20000);
    QCOMPARE(text("userCountLabel"), QString("U: 1"));
}

void TestStatusBar::framesAreCounted()
{
    bench.open(bench.mono);
    for (const char *expected : {"Frames: 1", "Frames: 2", "Frames: 3"}) {
        QVERIFY(bench.pushFlat(bench.mono, 40));
        const auto shown = [this] {
            bench.invoke("updateStatus");
            return text("framesLabel");
        };
        QTRY_COMPARE(shown(), QString(expected));
    }
    QCOMPARE(text("failedLabel"), QString("Failed: 0"));
}

void TestStatusBar::failedFramesAreCounted()
{
    openLive(50.0);
    kelvosim::failFrames("KVLIVE", 4);
    const auto shown = [this] {
        bench.invoke("updateStatus");
        return text("failedLabel");
    };
    QTRY_COMPARE(shown(), QString("Failed: 4"));
}

void TestStatusBar::theFrameRateHasTwoDecimals()
{
    openLive(12.5);
    // The rate is measured anew with each frame: what it was before and after is what was shown.
    double before = 0.0;
    double after = 1.0;
    const auto readTwice = [&] {
        before = reportedFrameRate();
        bench.invoke("updateStatus");
        after = reportedFrameRate();
        return before == after && before > 0.0;
    };
    QTRY_VERIFY(readTwice());
    QCOMPARE(text("frameRateLabel"), "FPS: " + QString::number(before, 'f', 2));
    QVERIFY(text("frameRateLabel").section('.', 1).size() == 2);
}

void TestStatusBar::aCameraThatReportsNoFrameRateShowsZeroWithDecimals()
{
    bench.open(bench.mono);
    kelvosim::failCall("vx_GetFramesPerSecond", kelvosim::EveryCall, 3, "none");
    bench.invoke("updateStatus");
    QCOMPARE(kelvosim::openHandles(), 1);
    QCOMPARE(text("frameRateLabel"), QString("FPS: 0.00"));
}

/// Kept: what is not the user's own is the factory's.
void TestStatusBar::ignoredEntriesCountAsTheFactorys()
{
    bench.open(bench.mono);
    QTemporaryDir folder;
    QFile file(folder.filePath("list.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("1 1 1\n2 2 2\n3 3 0\n4 4 255\n5 5 1\n");
    file.close();
    WindowDriver::chooseFile(file.fileName());
    bench.driver->trigger("importListAction");
    QCOMPARE(bench.rows(), 7);
    bench.invoke("updateStatus");
    QCOMPARE(text("userCountLabel"), QString("U: 2"));
    QCOMPARE(text("factoryCountLabel"), QString("F: 5"));
}

void TestStatusBar::closingResetsTheFramesAndKeepsTheCountsOfEntries()
{
    bench.open(bench.mono);
    QVERIFY(bench.pushFlat(bench.mono, 40));
    bench.moveTo(QPoint(33, 44));
    bench.driver->trigger("addBadpixelAction");
    bench.invoke("updateStatus");
    bench.driver->trigger("closeCameraAction");
    QCOMPARE(texts(), (QStringList{"U: 1", "F: 2", "x: 0", "y: 0", "Frames: 0", "Failed: 0", "FPS: 0"}));
    // They stay until the next camera's first tick.
    QTRY_COMPARE(bench.driver->cameraStatus(bench.bayer), QString("free"));
    bench.open(bench.bayer);
    QCOMPARE(text("userCountLabel"), QString("U: 1"));
    QTRY_COMPARE_WITH_TIMEOUT(text("userCountLabel"), QString("U: 0"), 20000);
}

void TestStatusBar::closingFromAnotherRowChangesNothing()
{
    bench.open(bench.mono);
    bench.invoke("updateStatus");
    const QStringList before = texts();
    bench.driver->selectCamera(bench.bayer);
    bench.invoke("closeCamera");
    QCOMPARE(texts().mid(0, 6), before.mid(0, 6));
    QVERIFY(text("frameRateLabel") != "FPS: 0");
    QVERIFY(statisticsTimer()->isActive());
}

void TestStatusBar::theTimerRunsFromOpeningToClosing()
{
    bench.open(bench.mono);
    QVERIFY(statisticsTimer()->isActive());
    QCOMPARE(statisticsTimer()->interval(), 1500);
    bench.driver->trigger("closeCameraAction");
    QVERIFY(!statisticsTimer()->isActive());
}

void TestStatusBar::aCameraThatCannotBeOpenedStartsNoTimer()
{
    kelvosim::failCall("vx_InitCamera", 1, 3, "");
    bench.open(bench.mono);
    QCOMPARE(kelvosim::openHandles(), 0);
    QVERIFY(!statisticsTimer()->isActive());
    QCOMPARE(texts(), (QStringList{"", "", "x: 0", "y: 0", "", "", ""}));
}

/// Whichever call fails, from the first to the last that opening makes.
void TestStatusBar::theTimerStartsUnlessOpeningFails()
{
    QTimer boxes; // one of the calls asks whether the camera stores lists, and a box tells that it does not
    connect(&boxes, &QTimer::timeout, [] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            box->close();
    });
    boxes.start(5);
    bench.open(bench.mono);
    const int calls = testcamera::calls().size();
    QVERIFY(calls > 30);
    int failed = 0;
    for (int nth = 1; nth <= calls; ++nth) {
        bench.resetBench();
        bench.showWindow();
        bench.driver->selectCamera(bench.mono);
        kelvosim::failNthCall(static_cast<std::uint64_t>(nth), false, 3, "");
        bench.driver->trigger("openCameraAction");
        kelvosim::clearFaults();
        const bool failedToOpen = messageMilliseconds() == 5000;
        failed += failedToOpen ? 1 : 0;
        QVERIFY2(statisticsTimer()->isActive() != failedToOpen, qPrintable(QString::number(nth)));
        QCOMPARE(kelvosim::openHandles(), failedToOpen ? 0 : 1);
    }
    QVERIFY(failed > 5);
    QVERIFY(failed < calls - 5);
}

void TestStatusBar::aFailureAfterOpeningLeavesTheTimerOfTheCameraBeforeRunning()
{
    bench.open(bench.mono);
    kelvosim::failCall("vx_InitCamera", 1, 3, "");
    bench.open(bench.bayer);
    QCOMPARE(kelvosim::openHandles(), 0);
    QVERIFY(statisticsTimer()->isActive());
    QTRY_COMPARE_WITH_TIMEOUT(text("frameRateLabel"), QString("FPS: 0.00"), 20000);
}

void TestStatusBar::aDisconnectLeavesTheTimerRunning()
{
    bench.open(bench.mono);
    kelvosim::unplug("KVMONO");
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 2);
    QVERIFY(statisticsTimer()->isActive());
    QTRY_COMPARE_WITH_TIMEOUT(text("frameRateLabel"), QString("FPS: 0.00"), 20000);
    kelvosim::plug("KVMONO");
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 3);
    QVERIFY(statisticsTimer()->isActive());
}

void TestStatusBar::thePositionFollowsClicksKeysAndSelection()
{
    const auto position = [this] { return text("xLabel") + ", " + text("yLabel"); };
    bench.open(bench.mono);
    QVERIFY(bench.pushFlat(bench.mono, 40));
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    bench.driver->clickPixel(QPoint(50, 61));
    QCOMPARE(position(), QString("x: 50, y: 61"));
    QTest::keyClick(bench.window->findChild<MagnifierControl *>()->magnifier(), Qt::Key_Down);
    QCOMPARE(position(), QString("x: 50, y: 62"));
    bench.driver->badpixelTable()->selectRow(1);
    QCOMPARE(position(), QString("x: 20, y: 30"));
    bench.moveTo(QPoint(4000, -4000));
    QCOMPARE(position(), QString("x: 95, y: 0"));
}

void TestStatusBar::anErrorOfTheCameraIsShownForItsTime()
{
    QTemporaryDir folder;
    QVERIFY(QDir::setCurrent(folder.path()));
    bench.open(bench.mono);
    QDir::setCurrent(QDir::rootPath());
    QCOMPARE(bench.driver->message(), QString("Can't open camera parameter file."));
    QCOMPARE(messageMilliseconds(), 2000);
}

void TestStatusBar::aFailedOpenIsShownForFiveSeconds()
{
    kelvosim::failCall("vx_GetSensorInfo", 1, 3, "no sensor");
    bench.open(bench.mono);
    QCOMPARE(bench.driver->message(), QString("no sensor"));
    QCOMPARE(messageMilliseconds(), 5000);
}

void TestStatusBar::aReducedImageIsAnnouncedForTwoSeconds()
{
    for (const int scale : {1, 2}) {
        bar()->clearMessage();
        bench.invoke("updateScaleFactor", Q_ARG(int, scale));
        QCOMPARE(bench.driver->message(), QString("The image is too big and will be resized"));
        QCOMPARE(messageMilliseconds(), 2000);
    }
    for (const int scale : {0, 4}) {
        bar()->clearMessage();
        bench.invoke("updateScaleFactor", Q_ARG(int, scale));
        QCOMPARE(bench.driver->message(), QString());
    }
    // The message goes by itself.
    QSignalSpy changes(bar(), &QStatusBar::messageChanged);
    bench.invoke("updateScaleFactor", Q_ARG(int, 1));
    QTRY_COMPARE_WITH_TIMEOUT(changes.count(), 2, 20000);
    QCOMPARE(changes.last().first().toString(), QString());
}

void TestStatusBar::aFailedDeviceListIsShownForTwoSeconds()
{
    kelvosim::failCall("vx_GetNumberOfCameras", 1, 3, "bus error");
    QTRY_COMPARE(bench.driver->message(), QString("Can't get number of cameras."));
    QCOMPARE(messageMilliseconds(), 2000);
}

void TestStatusBar::countersAreNotTranslated()
{
    MarkingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    bench.showWindow();
    QCOMPARE(bench.driver->action("usageAction")->text(), QString("[&Usage]"));
    bench.open(bench.mono);
    bench.invoke("updateStatus");
    const QStringList open = texts();
    bench.driver->trigger("closeCameraAction");
    const QStringList closed = texts();
    QCoreApplication::removeTranslator(&translator);
    for (const QString &shown : open + closed)
        QVERIFY2(!shown.isEmpty() && !shown.contains('['), qPrintable(shown));
}

QTEST_MAIN(TestStatusBar)
#include "tst_statusbar.moc"
