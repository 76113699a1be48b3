// SPDX-License-Identifier: MIT
// The window as it stands: actions, menus, tool bar, docks, zoom, and what happens when it is built or ends.

#include "windowfixture.h"

#include "cameralistmodel.h"
#include "displaywidget.h"

#include <QApplication>
#include <QDockWidget>
#include <QHeaderView>
#include <QLayout>
#include <QMenuBar>
#include <QSignalSpy>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

#include <stdexcept>

namespace {

QStringList textsOf(const QList<QAction *> &actions)
{
    QStringList texts;
    for (const QAction *action : actions)
        texts << (action->isSeparator() ? QString("-") : action->text());
    return texts;
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.window.reset(); }

    void theTitleReplacesTheFormsOwn();
    void actionsHaveTheirTextsIconsAndStates_data();
    void actionsHaveTheirTextsIconsAndStates();
    void menusAreInOrder();
    void toolBarIsInOrder();
    void theZoomMenuOpensWithOneClick();
    void docksHaveTitlesNamesAndAreas();
    void theHotPixelListIsATabBehindTheCameraList();
    void tablesSelectOneRow_data();
    void tablesSelectOneRow();
    void headersSortTheTables();
    void oneToTwoChecksOnlyItself();
    void zoomLevels_data();
    void zoomLevels();
    void anUnknownActionUnchecksAllZooms();
    void toFitIsNeverVisible();
    void theViewMenuShowsAClosedDockUnchecked();
    void aDestroyedDockLeavesTheViewMenuWorking();
    void dockTogglesFlipTheirDock();
    void shortcutsWorkWithAHiddenToolBar();
    void theImageLabelIsHiddenAtFirst();
    void aFailureWhileBuildingLeavesTheConstructor();
    void aFailingRefreshIsShownAndTheNextGoesOn();
    void everySlotStandsBeingCalledWithoutACamera_data();
    void everySlotStandsBeingCalledWithoutACamera();
    void slotsWithArgumentsStandBeingCalledWithoutACamera();
    void languageChangeRetranslatesTheForm();

private:
    WindowFixture bench;
};

void TestMainWindow::init()
{
    bench.resetBench();
    bench.showWindow();
}

void TestMainWindow::theTitleReplacesTheFormsOwn()
{
    QCOMPARE(bench.window->windowTitle(), QString("Kelvo Speckmend"));
    QCOMPARE(bench.window->objectName(), QString("MainWindow"));
    QVERIFY(!bench.window->windowIcon().isNull());
    QCOMPARE(bench.window->centralWidget()->layout()->contentsMargins(), QMargins());
}

void TestMainWindow::actionsHaveTheirTextsIconsAndStates_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("icon");
    QTest::addColumn<QString>("shortcut");
    QTest::addColumn<bool>("checkable");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("enabled"); // with no camera in the list

    const QStringList enabledAtStart{
        "highlightAction",      "clearBadpixelAction",    "zoom1to1Action",      "zoom2to1Action",
        "zoom4to1Action",       "zoom1to2Action",         "zoom1to4Action",      "exitAction",
        "showCameraListAction", "showBadpixelListAction", "showMagnifierAction", "showCameraSliderAction"};
    const auto row = [&](const char *name, const char *text, bool icon, const char *shortcut, bool checkable,
                         bool checked) {
        QTest::newRow(name) << QString(name) << QString(text) << icon << QString(shortcut) << checkable
                            << checked << enabledAtStart.contains(name);
    };
    row("openCameraAction", "&Open camera", true, "", false, false);
    row("closeCameraAction", "&Close camera", true, "", false, false);
    row("highlightAction", "&Highlight", true, "", true, true);
    row("writeListAction", "&Write hot pixel", true, "", false, false);
    row("correctionAction", "Hot pixel correction", true, "", true, false);
    row("addBadpixelAction", "&Add hot pixel", true, "Ctrl+A", false, false);
    row("deleteBadpixelAction", "&Delete hot pixel", true, "Del", false, false);
    row("clearBadpixelAction", "Clear user hot pixel", false, "", false, false);
    row("detectAction", "Detec&t hot pixel", true, "", false, false);
    row("zoom1to1Action", "1:1", false, "", true, true);
    row("zoom2to1Action", "2:1", false, "", true, false);
    row("zoom4to1Action", "4:1", false, "", true, false);
    row("zoom1to2Action", "1:2", false, "", true, false);
    row("zoom1to4Action", "1:4", false, "", true, false);
    row("zoomToFitAction", "To fit", false, "", true, false);
    row("zoomAction", "1:1", true, "", false, false);
    row("exitAction", "E&xit", true, "", false, false);
    row("showCameraListAction", "Camera list", true, "", true, false);
    row("showBadpixelListAction", "Hot pixel list", true, "", true, false);
    row("showMagnifierAction", "Magnifier", true, "", true, false);
    row("showCameraSliderAction", "Camera properties", true, "", true, false);
}

void TestMainWindow::actionsHaveTheirTextsIconsAndStates()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(bool, icon);
    QFETCH(QString, shortcut);
    QFETCH(bool, checkable);
    QFETCH(bool, checked);
    QFETCH(bool, enabled);
    for (const char *serial : {"KVMONO", "KVBAYER", "KVPLAIN"})
        kelvosim::removeCamera(serial);
    bench.showWindow();
    const QAction *action = bench.driver->action(qPrintable(name));
    QCOMPARE(action->text(), text);
    QCOMPARE(!action->icon().pixmap(32).isNull(), icon);
    QCOMPARE(action->shortcut().toString(), shortcut);
    QCOMPARE(action->isCheckable(), checkable);
    QCOMPARE(action->isChecked(), checked);
    QCOMPARE(action->isEnabled(), enabled);
}

void TestMainWindow::menusAreInOrder()
{
    const QList<QAction *> menus = bench.window->menuBar()->actions();
    QCOMPARE(textsOf(menus), (QStringList{"&File", "&View"}));
    QCOMPARE(textsOf(menus.at(0)->menu()->actions()),
             (QStringList{"&Open camera", "&Close camera", "-", "E&xit"}));
    QCOMPARE(
        textsOf(menus.at(1)->menu()->actions()),
        (QStringList{"Camera list", "Hot pixel list", "Magnifier", "Camera properties", "-", "&Highlight"}));
}

void TestMainWindow::toolBarIsInOrder()
{
    const auto *bar = bench.window->findChild<QToolBar *>("mainToolBar");
    QCOMPARE(bar->windowTitle(), QString("Toolbar"));
    QCOMPARE(bar->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QCOMPARE(
        textsOf(bar->actions()),
        (QStringList{"&Open camera", "&Close camera", "-", "Hot pixel correction", "Detec&t hot pixel",
                     "&Write hot pixel", "&Add hot pixel", "&Delete hot pixel", "-", "&Highlight", "1:1"}));
}

void TestMainWindow::theZoomMenuOpensWithOneClick()
{
    bench.open(bench.mono);
    QTRY_VERIFY(bench.enabled("zoomAction"));
    const auto *bar = bench.window->findChild<QToolBar *>("mainToolBar");
    QAction *zoom = bench.driver->action("zoomAction");
    auto *button = qobject_cast<QToolButton *>(bar->widgetForAction(zoom));
    bool opened = false;
    connect(zoom->menu(), &QMenu::aboutToShow, [&] {
        opened = true;
        QTimer::singleShot(0, zoom->menu(), &QMenu::close);
    });
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(5, button->height() / 2));
    QVERIFY(opened);
    QCOMPARE(textsOf(zoom->menu()->actions()), (QStringList{"1:4", "1:2", "1:1", "2:1", "4:1", "To fit"}));
}

void TestMainWindow::docksHaveTitlesNamesAndAreas()
{
    const QPair<const char *, const char *> docks[] = {{"CameraListDock", "Camera list"},
                                                       {"BadpixelListDock", "Hot pixel list"}};
    for (const auto &[name, title] : docks) {
        auto *dock = bench.window->findChild<QDockWidget *>(name);
        QVERIFY(dock);
        QCOMPARE(dock->windowTitle(), QString(title));
        QCOMPARE(dock->allowedAreas(), Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
        QCOMPARE(bench.window->dockWidgetArea(dock), Qt::LeftDockWidgetArea);
    }
}

void TestMainWindow::theHotPixelListIsATabBehindTheCameraList()
{
    auto *cameras = bench.window->findChild<QDockWidget *>("CameraListDock");
    auto *pixels = bench.window->findChild<QDockWidget *>("BadpixelListDock");
    QCOMPARE(bench.window->tabifiedDockWidgets(cameras), QList<QDockWidget *>{pixels});
    QTRY_VERIFY(!cameras->visibleRegion().isEmpty());
    QVERIFY(pixels->visibleRegion().isEmpty());
}

void TestMainWindow::tablesSelectOneRow_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("cameras") << "cameraTable";
    QTest::newRow("hot pixels") << "badpixelTable";
}

void TestMainWindow::tablesSelectOneRow()
{
    QFETCH(QString, name);
    auto *table = bench.window->findChild<QTableView *>(name);
    QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(table->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table->contextMenuPolicy(), Qt::CustomContextMenu);
    QVERIFY(table->isSortingEnabled());
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), table->verticalHeader()->minimumSectionSize());
    QVERIFY(!table->horizontalHeader()->isSortIndicatorShown());
    QVERIFY(!table->horizontalHeader()->highlightSections());
    QVERIFY(table->horizontalHeader()->stretchLastSection());
    if (name == "badpixelTable")
        QCOMPARE(table->horizontalHeader()->defaultSectionSize(), 40);
}

void TestMainWindow::headersSortTheTables()
{
    QTableView *table = bench.driver->cameraTable();
    QTRY_COMPARE(table->model()->rowCount(), 3);
    table->horizontalHeader()->setSortIndicator(3, Qt::DescendingOrder);
    QCOMPARE(WindowDriver::cell(table, 0, 3), bench.plain);
    table->horizontalHeader()->setSortIndicator(3, Qt::AscendingOrder);
    QCOMPARE(WindowDriver::cell(table, 0, 3), bench.bayer);

    // The actions follow the camera that stands in the selected row now.
    bench.open(bench.bayer);
    QTRY_VERIFY(bench.enabled("closeCameraAction"));
    table->horizontalHeader()->setSortIndicator(3, Qt::DescendingOrder);
    QCOMPARE(WindowDriver::cell(table, table->selectionModel()->selectedIndexes().first().row(), 3),
             bench.plain);
    QVERIFY(!bench.enabled("closeCameraAction"));
    QVERIFY(bench.enabled("openCameraAction"));
}

void TestMainWindow::oneToTwoChecksOnlyItself()
{
    bench.driver->trigger("zoom1to2Action");
    for (const char *name :
         {"zoom1to1Action", "zoom2to1Action", "zoom4to1Action", "zoom1to4Action", "zoomToFitAction"})
        QVERIFY2(!bench.driver->action(name)->isChecked(), name);
    QVERIFY(bench.driver->action("zoom1to2Action")->isChecked());
    QCOMPARE(bench.driver->action("zoomAction")->text(), QString("1:2"));
}

void TestMainWindow::zoomLevels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("1:1") << "zoom1to1Action" << QSize(96, 80);
    QTest::newRow("2:1") << "zoom2to1Action" << QSize(192, 160);
    QTest::newRow("4:1") << "zoom4to1Action" << QSize(384, 320);
    QTest::newRow("1:2") << "zoom1to2Action" << QSize(48, 40);
    QTest::newRow("1:4") << "zoom1to4Action" << QSize(24, 20);
}

void TestMainWindow::zoomLevels()
{
    QFETCH(QString, name);
    QFETCH(QSize, shown);
    bench.open(bench.mono);
    bench.driver->trigger(qPrintable(name));
    bench.pushFlat(bench.mono, 40);
    QTRY_COMPARE(bench.driver->display()->widget()->size(), shown);
}

void TestMainWindow::anUnknownActionUnchecksAllZooms()
{
    QAction stranger("3:1");
    bench.invoke("onZoomChanged", Q_ARG(QAction *, &stranger));
    for (const char *name : {"zoom1to1Action", "zoom2to1Action", "zoom4to1Action", "zoom1to2Action",
                             "zoom1to4Action", "zoomToFitAction"})
        QVERIFY2(!bench.driver->action(name)->isChecked(), name);
    QCOMPARE(bench.driver->action("zoomAction")->text(), QString("1:1"));
}

void TestMainWindow::toFitIsNeverVisible()
{
    const QAction *toFit = bench.driver->action("zoomToFitAction");
    QVERIFY(!toFit->isVisible());
    bench.open(bench.mono);
    bench.driver->trigger("zoom4to1Action");
    QVERIFY(!toFit->isVisible());
    QVERIFY(!toFit->isEnabled());
}

void TestMainWindow::theViewMenuShowsAClosedDockUnchecked()
{
    auto *dock = bench.window->findChild<QDockWidget *>("CameraListDock");
    QMenu *view = bench.window->menuBar()->actions().at(1)->menu();
    QTRY_VERIFY(dock->isVisible());
    emit view->aboutToShow();
    QVERIFY(bench.driver->action("showCameraListAction")->isChecked());
    dock->close();
    emit view->aboutToShow();
    QVERIFY(!bench.driver->action("showCameraListAction")->isChecked());
}

void TestMainWindow::aDestroyedDockLeavesTheViewMenuWorking()
{
    delete bench.window->findChild<QDockWidget *>("BadpixelListDock");
    emit bench.window->menuBar()->actions().at(1)->menu()->aboutToShow();
    QVERIFY(!bench.driver->action("showBadpixelListAction")->isChecked());
    bench.driver->trigger("showBadpixelListAction");
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 40);
    bench.moveTo(QPoint(10, 10));
}

void TestMainWindow::dockTogglesFlipTheirDock()
{
    auto *dock = bench.window->findChild<QDockWidget *>("CameraListDock");
    QTRY_VERIFY(dock->isVisible());
    bench.driver->trigger("showCameraListAction");
    QVERIFY(!dock->isVisible());
    bench.driver->trigger("showCameraListAction");
    QVERIFY(dock->isVisible());
}

void TestMainWindow::shortcutsWorkWithAHiddenToolBar()
{
    bench.open(bench.mono);
    QTRY_VERIFY(bench.enabled("addBadpixelAction"));
    bench.window->findChild<QToolBar *>("mainToolBar")->hide();
    bench.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(bench.window.get()));
    const int before = bench.rows();
    QTest::keyClick(bench.window.get(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(bench.rows(), before + 1);
    QTRY_VERIFY(bench.enabled("deleteBadpixelAction"));
    QTest::keyClick(bench.window.get(), Qt::Key_Delete);
    QCOMPARE(bench.rows(), before);
}

void TestMainWindow::theImageLabelIsHiddenAtFirst()
{
    QVERIFY(!bench.driver->display()->widget()->isVisible());
}

void TestMainWindow::aFailureWhileBuildingLeavesTheConstructor()
{
    bench.window.reset();
    kelvosim::failCall("vx_GetNumberOfCameras", 1, 3, "bus error");
    QVERIFY_EXCEPTION_THROWN(MainWindow(), std::runtime_error);
    QCOMPARE(kelvosim::waitingThreads(), 0);
    bench.showWindow();
}

void TestMainWindow::aFailingRefreshIsShownAndTheNextGoesOn()
{
    auto *model = qobject_cast<CameraListModel *>(bench.driver->cameraTable()->model());
    QTRY_COMPARE(model->rowCount(), 3);
    kelvosim::failCall("vx_GetCameraList", 1, 3, "bus error");
    kelvosim::unplug("KVPLAIN"); // refreshes through the device event
    QTRY_COMPARE(bench.driver->message(), QString("Can't get camera list."));
    QCOMPARE(model->rowCount(), 3);
    QTRY_COMPARE(model->rowCount(), 2);
}

void TestMainWindow::everySlotStandsBeingCalledWithoutACamera_data()
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

void TestMainWindow::everySlotStandsBeingCalledWithoutACamera()
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

void TestMainWindow::slotsWithArgumentsStandBeingCalledWithoutACamera()
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
        QTimer::singleShot(50, [] { QApplication::activePopupWidget()->close(); });
        bench.invoke(menu, Q_ARG(QPoint, QPoint()));
    }
    QVERIFY(testcamera::nothingHeld());
}

void TestMainWindow::languageChangeRetranslatesTheForm()
{
    bench.window->findChild<QToolBar *>("mainToolBar")->setWindowTitle("changed");
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(bench.window.get(), &change);
    QCOMPARE(bench.window->findChild<QToolBar *>("mainToolBar")->windowTitle(), QString("Toolbar"));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
