// SPDX-License-Identifier: MIT
// The one camera connection as a person sees it: opening, closing, failures, unplugging, enabled actions.

#include "windowfixture.h"

#include "cameralistmodel.h"
#include "displaywidget.h"

#include <QApplication>
#include <QDockWidget>
#include <QHeaderView>
#include <QSignalSpy>
#include <QStatusBar>
#include <QtTest>

namespace {

const char *const CameraActions[] = {"closeCameraAction", "correctionAction", "detectAction",
                                     "addBadpixelAction", "writeListAction",  "zoomAction"};

} // namespace

class TestConnection : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.window.reset(); }

    void openingShowsTheLiveImageAndTheCamerasLists();
    void openingEnablesTheCameraActions();
    void withNoSelectionOpeningIsDisabledAndADoubleClickOnAnEmptyAreaOpensNothing();
    void aDoubleClickOnARowOpensItsCamera();
    void aCameraInUseIsNotOpened();
    void eachFailingCallOfOpenShowsItsText_data();
    void eachFailingCallOfOpenShowsItsText();
    void aFailedOpenRunsTheLastTwoSteps();
    void aCameraThatCannotStoreListsIsAnnouncedAfterOpening();
    void theNextListChangeEnablesWritingAgain();
    void openingSetsCorrectionAsChecked();
    void openingSetsTheHighlightAsChecked();
    void openingResetsTheZoom();
    void openingAnotherCameraClosesTheFirst();
    void anotherCameraThatCannotBeOpenedLeavesNoImage();
    void closingEmptiesListAndView();
    void closingFromAnotherRowDoesNothing();
    void aFailingRefreshWhileClosingStillEmptiesTheList();
    void aFailingRefreshWhileOpeningStillAnnouncesTheCamera();
    void anUnpluggedCameraStaysOpenAndHidesItsImage();
    void afterReplugTheRowInUseIsSelectedAndTheImageShows();
    void theLastRowInUseEndsSelected();
    void aRowIsSelectedOnlyWhenNoneIs();
    void theFirmwareNoticeIsPaintedBeforeTheUpload();
    void correctionIsSwitchedFromTheAction();
    void theBooleanSignalFollowsTheCamera();
    void listsAreReadBeforeTheWindowHearsOfTheCamera();
    void aRedrawReadsNoBufferOfTheLibrary();
    void destroyingTheWindowReleasesTheCamera();

private:
    bool imageVisible() const { return bench.driver->display()->widget()->isVisible(); }

    WindowFixture bench;
};

void TestConnection::init()
{
    bench.resetBench();
    bench.showWindow();
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 3);
}

void TestConnection::openingShowsTheLiveImageAndTheCamerasLists()
{
    kelvosim::setStoredUserList("KVMONO", {{50, 60}});
    bench.open(bench.mono);
    QVERIFY(imageVisible());
    QCOMPARE(bench.rows(), 3);
    QCOMPARE(bench.cell(0, 0), QString("10"));
    QCOMPARE(bench.cell(2, 0), QString("50"));
    QCOMPARE(bench.cell(2, 2), QString("user"));
    bench.pushFlat(bench.mono, 90);
    QTRY_COMPARE(bench.driver->shownImage().size(), QSize(96, 80));
    QCOMPARE(qGray(bench.driver->shownImage().pixel(70, 5)), 90);
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("opened"));
}

void TestConnection::openingEnablesTheCameraActions()
{
    bench.driver->selectCamera(bench.mono);
    QVERIFY(bench.enabled("openCameraAction"));
    for (const char *name : CameraActions)
        QVERIFY2(!bench.enabled(name), name);
    bench.driver->trigger("openCameraAction");
    QVERIFY(!bench.enabled("openCameraAction"));
    for (const char *name : CameraActions)
        QVERIFY2(bench.enabled(name), name);
    bench.driver->selectCamera(bench.bayer);
    QVERIFY(bench.enabled("openCameraAction"));
    for (const char *name : CameraActions)
        QVERIFY2(!bench.enabled(name), name);
}

void TestConnection::withNoSelectionOpeningIsDisabledAndADoubleClickOnAnEmptyAreaOpensNothing()
{
    QTableView *table = bench.driver->cameraTable();
    table->clearSelection();
    QVERIFY(!bench.enabled("openCameraAction"));
    for (const char *name : {"MagnifierDock", "CameraSliderDock"}) // their room is the table's
        bench.window->findChild<QDockWidget *>(name)->close();
    QTRY_VERIFY(table->viewport()->height() > 150);
    const QPoint empty(table->viewport()->width() / 2, table->viewport()->height() - 3);
    QVERIFY(!table->indexAt(empty).isValid());
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, empty);
    bench.invoke("openCamera");
    QCOMPARE(kelvosim::openHandles(), 0);
}

void TestConnection::aDoubleClickOnARowOpensItsCamera()
{
    QTableView *table = bench.driver->cameraTable();
    bench.driver->selectCamera(bench.bayer);
    const QModelIndex row = table->selectionModel()->selectedIndexes().first();
    QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, table->visualRect(row).center());
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, table->visualRect(row).center());
    QCOMPARE(kelvosim::openHandles(), 1);
    QTRY_COMPARE(bench.driver->cameraStatus(bench.bayer), QString("opened"));
}

void TestConnection::aCameraInUseIsNotOpened()
{
    kelvosim::setUsedElsewhere("KVMONO", true);
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("in use"));
    bench.driver->selectCamera(bench.mono);
    QVERIFY(!bench.enabled("openCameraAction"));
    kelvosim::clearLog();
    bench.invoke("openCamera");
    QVERIFY(!testcamera::calls().contains("vx_InitCamera"));
    QCOMPARE(kelvosim::openHandles(), 0);
    QVERIFY(bench.driver->message().isEmpty());
}

void TestConnection::eachFailingCallOfOpenShowsItsText_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<int>("command");
    QTest::addColumn<int>("nth");
    QTest::addColumn<QString>("fixedText");
    QTest::newRow("init") << "vx_InitCamera" << -1 << 1 << "Could not initialize camera.";
    QTest::newRow("sensor") << "vx_GetSensorInfo" << -1 << 1 << "";
    QTest::newRow("colour mode") << "vx_SetColorMode" << 11 << 1 << "";
    QTest::newRow("colour query") << "vx_SetColorMode" << 32768 << 1 << "Color Mode not supported.";
    QTest::newRow("maximum size") << "vx_AOI" << 16 << 1 << "";
    QTest::newRow("image area") << "vx_AOI" << 1 << 1 << "";
    QTest::newRow("memory") << "vx_AllocImageMem" << -1 << 3 << "Can't allocate image memory.";
    QTest::newRow("sequence") << "vx_AddToSequence" << -1 << 3 << "Can't add buffer to sequence.";
    QTest::newRow("capture") << "vx_CaptureVideo" << -1 << 1 << "";
    QTest::newRow("frame rate") << "vx_GetFramesPerSecond" << -1 << 1 << "";
    QTest::newRow("default exposure") << "vx_SetExposureTime" << 32769 << 1 << "";
    QTest::newRow("clock range") << "vx_GetPixelClockRange" << -1 << 1 << "";
    QTest::newRow("clock") << "vx_SetPixelClock" << -1 << 2 << "";
}

void TestConnection::eachFailingCallOfOpenShowsItsText()
{
    QFETCH(QString, function);
    QFETCH(int, command);
    QFETCH(int, nth);
    QFETCH(QString, fixedText);
    for (const char *text : {"the library's own words", ""}) {
        kelvosim::failCall(function.toStdString(), nth, 61, text, command);
        bench.window->statusBar()->clearMessage();
        bench.open(bench.mono);
        const QString libraryText = *text ? QString(text) : QString("Unknown error.");
        QCOMPARE(bench.driver->message(), fixedText.isEmpty() ? libraryText : fixedText);
        QVERIFY(testcamera::nothingHeld());
        QCOMPARE(bench.rows(), 0);
        QVERIFY(!bench.enabled("writeListAction"));
        QVERIFY(!QApplication::activeModalWidget());
        kelvosim::clearFaults();
        QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("free"));
    }
}

void TestConnection::aFailedOpenRunsTheLastTwoSteps()
{
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    kelvosim::failCall("vx_GetSensorInfo", 1, 3, "no sensor");
    bench.driver->selectCamera(bench.mono);
    bench.driver->action("writeListAction")->setEnabled(true);
    bench.driver->trigger("openCameraAction");
    QCOMPARE(bench.driver->message(), QString("no sensor"));
    QCOMPARE(moved.last().first().toPoint(), QPoint(0, 0));
    QVERIFY(!bench.enabled("writeListAction"));
}

void TestConnection::aCameraThatCannotStoreListsIsAnnouncedAfterOpening()
{
    QString text;
    QString title;
    bool writeEnabled = true;
    WindowDriver::whenModal([&](QWidget *modal) {
        auto *box = qobject_cast<QMessageBox *>(modal);
        QVERIFY(box);
        text = box->text();
        title = box->windowTitle();
        QCOMPARE(box->icon(), QMessageBox::Warning);
        QCOMPARE(box->standardButtons(), QMessageBox::Ok);
        QCOMPARE(box->parentWidget(), bench.window.get());
        writeEnabled = bench.enabled("writeListAction");
        box->button(QMessageBox::Ok)->click();
    });
    bench.open(bench.plain);
    QCOMPARE(text,
             QString("This camera only supports software correction and therefore can't save inside the "
                     "camera memory."));
    QCOMPARE(title, QString("Please note!"));
    QVERIFY(!writeEnabled);
    QCOMPARE(kelvosim::openHandles(), 1);
}

void TestConnection::theNextListChangeEnablesWritingAgain()
{
    WindowDriver::answerBox(QMessageBox::Ok);
    bench.open(bench.plain);
    kelvosim::unplug("KVMONO");
    QTRY_VERIFY(bench.enabled("writeListAction"));
}

void TestConnection::openingSetsCorrectionAsChecked()
{
    bench.driver->action("correctionAction")->setChecked(true);
    bench.open(bench.mono);
    QVERIFY(kelvosim::correctionOn("KVMONO"));
    bench.driver->trigger("closeCameraAction");
    bench.driver->action("correctionAction")->setChecked(false);
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("free"));
    bench.open(bench.mono);
    QVERIFY(!kelvosim::correctionOn("KVMONO"));
}

void TestConnection::openingSetsTheHighlightAsChecked()
{
    for (const bool checked : {false, true}) {
        {
            const QSignalBlocker untold(bench.driver->action("highlightAction"));
            bench.driver->action("highlightAction")->setChecked(checked);
        }
        bench.open(bench.mono);
        QVERIFY(bench.pushFlat(bench.mono, 40));
        QTRY_VERIFY(!bench.driver->shownImage().isNull());
        QCOMPARE(bench.driver->shownImage().allGray(), !checked);
        bench.driver->trigger("closeCameraAction");
        QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("free"));
    }
}

void TestConnection::openingResetsTheZoom()
{
    bench.driver->trigger("zoom4to1Action");
    bench.open(bench.mono);
    QVERIFY(bench.driver->action("zoom1to1Action")->isChecked());
    QVERIFY(!bench.driver->action("zoom4to1Action")->isChecked());
    QCOMPARE(bench.driver->action("zoomAction")->text(), QString("1:1"));
}

void TestConnection::openingAnotherCameraClosesTheFirst()
{
    bench.open(bench.mono);
    QSignalSpy opened(bench.window.get(), &MainWindow::cameraOpened);
    bench.open(bench.bayer);
    QCOMPARE(opened.count(), 2);
    QCOMPARE(opened.at(0).first().toBool(), false);
    QCOMPARE(opened.at(1).first().toBool(), true);
    QCOMPARE(kelvosim::openHandles(), 1);
    QTRY_COMPARE(bench.driver->cameraStatus(bench.bayer), QString("opened"));
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("free"));
}

void TestConnection::anotherCameraThatCannotBeOpenedLeavesNoImage()
{
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 90);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    kelvosim::failCall("vx_InitCamera", 1, 3, "");
    bench.open(bench.bayer);
    QCOMPARE(kelvosim::openHandles(), 0);
    QVERIFY(bench.driver->shownImage().isNull());
    QVERIFY(!imageVisible());
    bench.open(bench.mono);
    QVERIFY(imageVisible());
}

void TestConnection::closingEmptiesListAndView()
{
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 90);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    bench.driver->trigger("closeCameraAction");
    QVERIFY(testcamera::nothingHeld());
    QCOMPARE(bench.rows(), 0);
    QVERIFY(!imageVisible());
    QVERIFY(bench.driver->shownImage().isNull());
    QCOMPARE(moved.last().first().toPoint(), QPoint(0, 0));
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("free"));
    QVERIFY(bench.enabled("openCameraAction"));
    QVERIFY(!bench.enabled("closeCameraAction"));
}

void TestConnection::closingFromAnotherRowDoesNothing()
{
    bench.open(bench.mono);
    bench.driver->selectCamera(bench.bayer);
    QVERIFY(!bench.enabled("closeCameraAction"));
    bench.invoke("closeCamera");
    QCOMPARE(kelvosim::openHandles(), 1);
    QVERIFY(imageVisible());
}

void TestConnection::aFailingRefreshWhileClosingStillEmptiesTheList()
{
    bench.open(bench.mono);
    QSignalSpy opened(bench.window.get(), &MainWindow::cameraOpened);
    kelvosim::failCall("vx_GetNumberOfCameras", 1, 3, "bus error");
    bench.driver->trigger("closeCameraAction");
    QCOMPARE(bench.rows(), 0);
    QCOMPARE(opened.count(), 1);
    QCOMPARE(opened.first().first().toBool(), false);
    QCOMPARE(bench.driver->message(), QString("Can't get number of cameras."));
}

void TestConnection::aFailingRefreshWhileOpeningStillAnnouncesTheCamera()
{
    kelvosim::failCall("vx_GetNumberOfCameras", 1, 3, "bus error");
    bench.open(bench.mono);
    QCOMPARE(kelvosim::openHandles(), 1);
    QCOMPARE(bench.rows(), 2);
    QVERIFY(imageVisible());
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("opened"));
}

void TestConnection::anUnpluggedCameraStaysOpenAndHidesItsImage()
{
    bench.open(bench.mono);
    kelvosim::unplug("KVMONO");
    QTRY_VERIFY(!imageVisible());
    QCOMPARE(kelvosim::openHandles(), 1);
    QCOMPARE(bench.rows(), 2);
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString());
}

void TestConnection::afterReplugTheRowInUseIsSelectedAndTheImageShows()
{
    bench.open(bench.mono);
    kelvosim::unplug("KVMONO");
    QTRY_VERIFY(!imageVisible());
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString());
    // Whether the camera or the bus speaks first is open, so the list is kept from refreshing until both
    // have.
    QSignalSpy failed(bench.driver->cameraTable()->model(), SIGNAL(refreshFailed(QString, int)));
    kelvosim::failCall("vx_GetNumberOfCameras", kelvosim::EveryCall, 3, "bus error");
    kelvosim::plug("KVMONO");
    QTRY_VERIFY(imageVisible());
    QTRY_VERIFY(failed.count() >= 2);
    kelvosim::clearFaults();
    bench.invoke("onCameraReconnect");
    QCOMPARE(bench.driver->cameraStatus(bench.mono), QString("in use"));
    const QModelIndexList selected = bench.driver->cameraTable()->selectionModel()->selectedIndexes();
    QVERIFY(!selected.isEmpty());
    QCOMPARE(WindowDriver::cell(bench.driver->cameraTable(), selected.first().row(), 3), bench.mono);
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("opened"));
    QVERIFY(bench.enabled("closeCameraAction"));
}

void TestConnection::theLastRowInUseEndsSelected()
{
    for (const char *serial : {"KVMONO", "KVPLAIN"})
        kelvosim::setUsedElsewhere(serial, true);
    bench.driver->selectCamera(bench.bayer);
    bench.invoke("onCameraReconnect");
    const QModelIndexList selected = bench.driver->cameraTable()->selectionModel()->selectedIndexes();
    QCOMPARE(WindowDriver::cell(bench.driver->cameraTable(), selected.first().row(), 3), bench.plain);
}

void TestConnection::aRowIsSelectedOnlyWhenNoneIs()
{
    bench.driver->selectCamera(bench.plain);
    bench.invoke("onSelectCameraRow", Q_ARG(int, 0));
    const QItemSelectionModel *selection = bench.driver->cameraTable()->selectionModel();
    QCOMPARE(WindowDriver::cell(bench.driver->cameraTable(), selection->selectedIndexes().first().row(), 3),
             bench.plain);
    bench.driver->cameraTable()->clearSelection();
    bench.invoke("onSelectCameraRow", Q_ARG(int, 0));
    QCOMPARE(selection->selectedIndexes().first().row(), 0);
}

void TestConnection::theFirmwareNoticeIsPaintedBeforeTheUpload()
{
    kelvosim::CameraSpec spec = WindowFixture::spec();
    spec.serial = "KVUPLOAD";
    spec.firmwareUpload = 30;
    kelvosim::addCamera(spec);
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 4);
    class PaintCount : public QObject
    {
    public:
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint && kelvosim::openHandles() == 0)
                ++painted;
            return false;
        }
        int painted = 0;
    } paints;
    bench.window->statusBar()->installEventFilter(&paints);
    bench.driver->selectCamera("KVUPLOAD");
    QCoreApplication::processEvents();
    paints.painted = 0;
    bench.driver->trigger("openCameraAction");
    QVERIFY(paints.painted > 0);
    QCOMPARE(kelvosim::openHandles(), 1);
}

void TestConnection::correctionIsSwitchedFromTheAction()
{
    bench.open(bench.mono);
    bench.driver->trigger("correctionAction");
    QVERIFY(kelvosim::correctionOn("KVMONO"));
    bench.driver->trigger("correctionAction");
    QVERIFY(!kelvosim::correctionOn("KVMONO"));
}

void TestConnection::theBooleanSignalFollowsTheCamera()
{
    QSignalSpy opened(bench.window.get(), &MainWindow::cameraOpened);
    bench.open(bench.mono);
    bench.driver->trigger("closeCameraAction");
    QCOMPARE(opened.count(), 2);
    QCOMPARE(opened.at(0).first().toBool(), true);
    QCOMPARE(opened.at(1).first().toBool(), false);
}

void TestConnection::listsAreReadBeforeTheWindowHearsOfTheCamera()
{
    QStringList seen;
    connect(bench.window.get(), &MainWindow::cameraOpened, [&] {
        seen << QString("%1 rows, %2").arg(bench.rows()).arg(bench.driver->cameraStatus(bench.mono));
        QVERIFY(!bench.enabled("closeCameraAction"));
    });
    bench.open(bench.mono);
    bench.driver->trigger("closeCameraAction");
    // On opening the camera list refreshes after the window, on closing before it.
    QCOMPARE(seen, (QStringList{"2 rows, free", "0 rows, free"}));
}

void TestConnection::aRedrawReadsNoBufferOfTheLibrary()
{
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 90);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    // The buffers are all written anew while the view still shows the first frame.
    kelvosim::failCall("vx_LockSeqBuf", kelvosim::EveryCall, 3, "not now");
    for (int i = 0; i < 6; ++i)
        QVERIFY(bench.pushFlat(bench.mono, 10));
    QCoreApplication::processEvents();
    bench.driver->display()->redrawImage();
    QCOMPARE(qGray(bench.driver->shownImage().pixel(70, 5)), 90);
    bench.driver->trigger("closeCameraAction");
    QCOMPARE(kelvosim::allocatedBuffers(), 0);
    bench.driver->display()->redrawImage();
    QVERIFY(bench.driver->shownImage().isNull());
}

void TestConnection::destroyingTheWindowReleasesTheCamera()
{
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 90);
    bench.window.reset();
    QVERIFY(testcamera::nothingHeld());
    QCOMPARE(kelvosim::enabledEvents(), 0);
    QCOMPARE(kelvosim::waitingThreads(), 0);
}

QTEST_MAIN(TestConnection)
#include "tst_connection.moc"
