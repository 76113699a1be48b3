// SPDX-License-Identifier: MIT
// What the window stands: failures while it is built and refreshed, slots out of turn, docks that are gone.

#include "windowfixture.h"

#include "cameralistmodel.h"

#include <QApplication>
#include <QDockWidget>
#include <QMenuBar>
#include <QtTest>

#include <stdexcept>

class TestWindowFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.window.reset(); }

    void aDestroyedDockLeavesTheViewMenuWorking();
    void aFailureWhileBuildingLeavesTheConstructor();
    void aFailingRefreshIsShownAndTheNextGoesOn();
    void everySlotStandsBeingCalledWithoutACamera_data();
    void everySlotStandsBeingCalledWithoutACamera();
    void slotsWithArgumentsStandBeingCalledWithoutACamera();

private:
    WindowFixture bench;
};

void TestWindowFaults::init()
{
    bench.resetBench();
    bench.showWindow();
}

void TestWindowFaults::aDestroyedDockLeavesTheViewMenuWorking()
{
    delete bench.window->findChild<QDockWidget *>("BadpixelListDock");
    emit bench.window->menuBar()->actions().at(1)->menu()->aboutToShow();
    QVERIFY(!bench.driver->action("showBadpixelListAction")->isChecked());
    bench.driver->trigger("showBadpixelListAction");
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 40);
    bench.moveTo(QPoint(10, 10));
}

void TestWindowFaults::aFailureWhileBuildingLeavesTheConstructor()
{
    bench.window.reset();
    kelvosim::failCall("vx_GetNumberOfCameras", 1, 3, "bus error");
    QVERIFY_EXCEPTION_THROWN(MainWindow(), std::runtime_error);
    QCOMPARE(kelvosim::waitingThreads(), 0);
    bench.showWindow();
}

void TestWindowFaults::aFailingRefreshIsShownAndTheNextGoesOn()
{
    auto *model = qobject_cast<CameraListModel *>(bench.driver->cameraTable()->model());
    QTRY_COMPARE(model->rowCount(), 3);
    kelvosim::failCall("vx_GetCameraList", 1, 3, "bus error");
    kelvosim::unplug("KVPLAIN"); // refreshes through the device event
    QTRY_COMPARE(bench.driver->message(), QString("Can't get camera list."));
    QCOMPARE(model->rowCount(), 3);
    QTRY_COMPARE(model->rowCount(), 2);
}

void TestWindowFaults::everySlotStandsBeingCalledWithoutACamera_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<bool>("withCameras");
    for (const char *slot : {"openCamera", "closeCamera", "updateCameraActions", "onCameraClosed",
                             "addNewBadpixel", "deleteBadpixel", "clearBadpixel", "detectBadpixel",
                             "onMenuShow", "onCameraReconnect", "onCameraDisconnect", "onHotpixelCorrection",
                             "onShowHideCameraListDock", "onShowHideBadpixelListDock",
                             "onShowHideMagnifierDock", "onShowHideCameraSliderDock", "clearMagnifier"}) {
        QTest::addRow("%s, empty bench", slot) << slot << false;
        if (qstrcmp(slot, "openCamera") != 0)
            QTest::addRow("%s, none open", slot) << slot << true;
    }
}

void TestWindowFaults::everySlotStandsBeingCalledWithoutACamera()
{
    QFETCH(QString, slot);
    QFETCH(bool, withCameras);
    if (!withCameras) {
        for (const char *serial : {"KVMONO", "KVBAYER", "KVPLAIN"})
            kelvosim::removeCamera(serial);
        QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 0);
    }
    bench.invoke(qPrintable(slot));
    QVERIFY(testcamera::nothingHeld());
    QVERIFY(bench.window->isVisible());
}

void TestWindowFaults::slotsWithArgumentsStandBeingCalledWithoutACamera()
{
    QImage none;
    bench.invoke("newImage", Q_ARG(QImage &, none));
    bench.invoke("setSelection", Q_ARG(QModelIndex, QModelIndex()), Q_ARG(QModelIndex, QModelIndex()));
    bench.invoke("updateSelection", Q_ARG(QItemSelection, QItemSelection()),
                 Q_ARG(QItemSelection, QItemSelection()));
    bench.invoke("setMagnifierPosition", Q_ARG(QPoint, QPoint(-7, 70000)));
    bench.invoke("addNewBadpixel");
    for (const int scale : {-3, 0, 1, 2, 3})
        bench.invoke("updateScaleFactor", Q_ARG(int, scale));
    bench.invoke("onZoomChanged", Q_ARG(QAction *, nullptr));
    bench.driver->cameraTable()->clearSelection();
    for (const int row : {-1, 99})
        bench.invoke("onSelectCameraRow", Q_ARG(int, row));
    bench.invoke("startDetectingBadpixel", Q_ARG(bool, true), Q_ARG(uint, 40u));
    bench.invoke("onCameraOpened", Q_ARG(Camera *, nullptr));
    WindowDriver::answerBox(QMessageBox::Ok);
    bench.invoke("writeBadpixelList");
    WindowDriver::whenModal([](QWidget *dialogue) { dialogue->close(); });
    bench.invoke("openDetectDialog");
    for (const char *menu : {"showCameraListContextMenu", "showBadpixelListContextMenu"}) {
        QTimer::singleShot(0, [] {
            QWidget *popup = QApplication::activePopupWidget();
            QVERIFY(popup);
            popup->close();
        });
        bench.invoke(menu, Q_ARG(QPoint, QPoint()));
    }
    QVERIFY(testcamera::nothingHeld());
}

QTEST_MAIN(TestWindowFaults)
#include "tst_windowfaults.moc"
