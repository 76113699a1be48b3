// SPDX-License-Identifier: MIT
// The window as it stands: its slots, actions, menus, tool bar, zoom, docks and tables.

#include "windowfixture.h"

#include "displaywidget.h"
#include "magnifier.h"
#include "magnifiercontrol.h"
#include "pixelclassdelegate.h"

#include <QApplication>
#include <QDockWidget>
#include <QGridLayout>
#include <QHeaderView>
#include <QMenuBar>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTabBar>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

namespace {

const char *const ZoomNames[] = {"zoom1to1Action", "zoom2to1Action", "zoom4to1Action",
                                 "zoom1to2Action", "zoom1to4Action", "zoomToFitAction"};

QStringList textsOf(const QList<QAction *> &actions)
{
    QStringList texts;
    for (const QAction *action : actions)
        texts << (action->isSeparator() ? QString("-") : action->text());
    return texts;
}

QStringList methodsOfTheWindow(QMetaMethod::MethodType type, QMetaMethod::Access access)
{
    const QMetaObject &meta = MainWindow::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() == type && method.access() == access)
            signatures << QString::fromLatin1(method.methodSignature());
    }
    return signatures;
}

/// What the icon shows at a picture's own size.
QImage drawn(const QIcon &icon, const QPixmap &picture)
{
    return icon.pixmap(picture.size()).toImage().convertToFormat(QImage::Format_ARGB32);
}

bool isColoured(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qRed(pixel) != qBlue(pixel) || qRed(pixel) != qGreen(pixel))
                return true;
        }
    }
    return false;
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.window.reset(); }

    void signalsAreInOrder();
    void slotsAreProtectedAndInOrder();
    void theTitleReplacesTheFormsOwn();
    void theFormHoldsTheViewAndTheBars();
    void theWindowOwnsASelectionModelForEachTable();

    void actionsHaveTheirTextsIconsAndStates_data();
    void actionsHaveTheirTextsIconsAndStates();
    void actionsAreTheWindowsOwnAndInOrder();
    void saveAndLoadStartEnabledUntilTheFirstListChange();
    void withCamerasOnlyOpeningStartsEnabled();
    void menusAreInOrder();
    void toolBarIsInOrder();
    void dialoguesOpenFromTheirActions_data();
    void dialoguesOpenFromTheirActions();
    void highlightSwitchesTheOverlays();
    void clearingRemovesTheUserEntriesAndStaysEnabled();
    void exitClosesTheWindow();
    void shortcutsWorkWithAHiddenToolBar();
    void languageChangeRetranslatesTheForm();

    void theZoomMenuOpensWithOneClick();
    void oneToTwoChecksOnlyItself();
    void zoomLevels_data();
    void zoomLevels();
    void choosingTheCheckedZoomKeepsItChecked();
    void anUnknownActionUnchecksAllZooms();
    void toFitIsNeverVisible();

    void docksHaveTitlesNamesAreasAndContents_data();
    void docksHaveTitlesNamesAreasAndContents();
    void docksStandInOrderOnTheLeft();
    void theHotPixelListIsATabBehindTheCameraList();
    void theViewMenuShowsAClosedDockUnchecked_data();
    void theViewMenuShowsAClosedDockUnchecked();
    void dockTogglesFlipTheirDock_data();
    void dockTogglesFlipTheirDock();
    void aMagnifierDockThatIsBuiltWhileACameraIsOpenShowsTheFocus();

    void tablesSelectOneRow_data();
    void tablesSelectOneRow();
    void tablesShowTheirListsWithTheWindowsSelection();
    void onlyTheClassColumnHasADelegate();
    void theCameraColumnsFitTheirContents();
    void headersSortTheTables();
    void theCameraMenuFollowsTheActions();
    void theHotPixelMenuFollowsListAndSelection();
    void contextMenusOpenAtTheCursorAndStayWithTheWindow_data();
    void contextMenusOpenAtTheCursorAndStayWithTheWindow();

    void theImageLabelIsHiddenAtFirst();

private:
    void emptyTheBench();
    QDockWidget *dock(const QString &name) const { return bench.window->findChild<QDockWidget *>(name); }
    QMenu *menu(int number) const { return bench.window->menuBar()->actions().at(number)->menu(); }
    QToolBar *toolBar() const { return bench.window->findChild<QToolBar *>("mainToolBar"); }
    QStringList rightClick(const QTableView *table, const std::function<void(QMenu *)> &look = {}) const;

    WindowFixture bench;
};

void TestMainWindow::init()
{
    bench.resetBench();
    bench.showWindow();
}

/// A new window on a bench without cameras.
void TestMainWindow::emptyTheBench()
{
    for (const char *serial : {"KVMONO", "KVBAYER", "KVPLAIN"})
        kelvosim::removeCamera(serial);
    bench.showWindow();
}

/// Asks for a table's context menu. @return the texts that it offers
QStringList TestMainWindow::rightClick(const QTableView *table,
                                       const std::function<void(QMenu *)> &look) const
{
    QStringList texts;
    QTimer::singleShot(0, [&] {
        auto *open = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(open);
        texts = textsOf(open->actions());
        if (look)
            look(open);
        open->close();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5));
    QCoreApplication::sendEvent(table->viewport(), &event);
    return texts;
}

void TestMainWindow::signalsAreInOrder()
{
    QCOMPARE(methodsOfTheWindow(QMetaMethod::Signal, QMetaMethod::Public),
             (QStringList{"cameraOpened(bool)", "magnifierPositionChanged(QPoint)", "detectionFinished()",
                          "detectionProgress(int)"}));
}

void TestMainWindow::slotsAreProtectedAndInOrder()
{
    const QStringList expected{
        "createCameraListDock()",
        "createBadpixelListDock()",
        "createMagnifierDock()",
        "createCameraSliderDock()",
        "clearMagnifier()",
        "showCameraListContextMenu(QPoint)",
        "showBadpixelListContextMenu(QPoint)",
        "openCamera()",
        "closeCamera()",
        "newImage(QImage&)",
        "updateStatus()",
        "updateCameraActions()",
        "onCameraOpened(Camera*)",
        "onCameraClosed()",
        "setSelection(QModelIndex,QModelIndex)",
        "updateSelection(QItemSelection,QItemSelection)",
        "setMagnifierPosition(QPoint)",
        "updateStatusPosition(QPoint)",
        "updateScaleFactor(int)",
        "writeBadpixelList()",
        "saveBadpixelList()",
        "loadBadpixelList()",
        "exportBadpixelList()",
        "importBadpixelList()",
        "addNewBadpixel()",
        "deleteBadpixel()",
        "clearBadpixel()",
        "openDetectDialog()",
        "startDetectingBadpixel(bool,uint)",
        "detectBadpixel()",
        "onShowHideCameraListDock()",
        "onShowHideBadpixelListDock()",
        "onShowHideMagnifierDock()",
        "onShowHideCameraSliderDock()",
        "onMenuShow()",
        "onZoomChanged(QAction*)",
        "onSelectCameraRow(int)",
        "onCameraReconnect()",
        "onCameraDisconnect()",
        "onHotpixelCorrection()",
        "openHelpUsageWindow()",
        "openHelpAboutWindow()",
    };
    QCOMPARE(methodsOfTheWindow(QMetaMethod::Slot, QMetaMethod::Protected), expected);
    for (const auto access : {QMetaMethod::Public, QMetaMethod::Private})
        QCOMPARE(methodsOfTheWindow(QMetaMethod::Slot, access), QStringList());
}

void TestMainWindow::theTitleReplacesTheFormsOwn()
{
    QCOMPARE(bench.window->windowTitle(), QString("Kelvo Speckmend"));
    QCOMPARE(bench.window->objectName(), QString("MainWindow"));
    const QPixmap icon(":/res/main.ico");
    QVERIFY(!icon.isNull());
    QCOMPARE(drawn(bench.window->windowIcon(), icon), drawn(QIcon(":/res/main.ico"), icon));
}

void TestMainWindow::theFormHoldsTheViewAndTheBars()
{
    QCOMPARE(bench.window->centralWidget()->objectName(), QString("centralWidget"));
    const auto *layout = qobject_cast<QGridLayout *>(bench.window->centralWidget()->layout());
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), QString("gridLayout"));
    QCOMPARE(layout->contentsMargins(), QMargins());
    QVERIFY(layout->indexOf(bench.driver->display()) >= 0);
    QCOMPARE(bench.window->menuBar()->objectName(), QString("menuBar"));
    QCOMPARE(bench.window->statusBar()->objectName(), QString("statusBar"));
    QCOMPARE(toolBar()->windowTitle(), QString("Toolbar"));
    QCOMPARE(toolBar()->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
}

void TestMainWindow::theWindowOwnsASelectionModelForEachTable()
{
    const auto models =
        bench.window->findChildren<QItemSelectionModel *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(models, (QList<QItemSelectionModel *>{bench.driver->cameraTable()->selectionModel(),
                                                   bench.driver->badpixelTable()->selectionModel()}));
}

void TestMainWindow::actionsHaveTheirTextsIconsAndStates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("icon"); // file name; none when empty
    QTest::addColumn<QString>("shortcut");
    QTest::addColumn<bool>("checkable");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("enabled"); // with no camera in the list

    const auto row = [](const char *name, const char *text, const char *icon, const char *state,
                        const char *shortcut = "") {
        const QStringList states = QString(state).split(' ');
        const bool checked = states.contains("checked");
        QTest::newRow(name) << text << icon << shortcut << (checked || states.contains("unchecked"))
                            << checked << !states.contains("disabled");
    };
    row("openCameraAction", "&Open camera", "openplay.png", "disabled");
    row("closeCameraAction", "&Close camera", "camclose.png", "disabled");
    row("saveListAction", "&Save hot pixel list", "writeList.png", "enabled");
    row("loadListAction", "&Load hot pixel list", "openList.png", "enabled");
    row("highlightAction", "&Highlight", "highlight.png", "enabled checked");
    row("writeListAction", "&Write hot pixel", "writeBadpixel.png", "disabled");
    row("correctionAction", "Hot pixel correction", "badpixelCorrection.png", "disabled unchecked");
    row("addBadpixelAction", "&Add hot pixel", "addBadpixel.png", "disabled", "Ctrl+A");
    row("deleteBadpixelAction", "&Delete hot pixel", "deleteBadpixel.png", "disabled", "Del");
    row("clearBadpixelAction", "Clear user hot pixel", "", "enabled");
    row("detectAction", "Detec&t hot pixel", "detectBadpixel.png", "disabled");
    row("zoom1to1Action", "1:1", "", "enabled checked");
    row("zoom2to1Action", "2:1", "", "enabled unchecked");
    row("zoom4to1Action", "4:1", "", "enabled unchecked");
    row("zoom1to2Action", "1:2", "", "enabled unchecked");
    row("zoom1to4Action", "1:4", "", "enabled unchecked");
    row("zoomToFitAction", "To fit", "", "disabled unchecked");
    row("zoomAction", "1:1", "zoom.png", "disabled");
    row("usageAction", "&Usage", "help.png", "enabled");
    row("aboutAction", "&About...", "information.png", "enabled");
    row("exportListAction", "&Export hot pixel list", "exportList.png", "enabled");
    row("importListAction", "&Import hot pixel list", "importList.png", "enabled");
    row("exitAction", "E&xit", "exit.png", "enabled");
    row("showCameraListAction", "Camera list", "cameraList.png", "enabled unchecked");
    row("showBadpixelListAction", "Hot pixel list", "badpixelList.png", "enabled unchecked");
    row("showMagnifierAction", "Magnifier", "window_view.png", "enabled unchecked");
    row("showCameraSliderAction", "Camera properties", "cameraproperties.png", "enabled unchecked");
}

void TestMainWindow::actionsHaveTheirTextsIconsAndStates()
{
    QFETCH(QString, text);
    QFETCH(QString, icon);
    QFETCH(QString, shortcut);
    QFETCH(bool, checkable);
    QFETCH(bool, checked);
    QFETCH(bool, enabled);
    emptyTheBench();
    const QAction *action = bench.driver->action(QTest::currentDataTag());
    QCOMPARE(action->text(), text);
    QCOMPARE(action->icon().isNull(), icon.isEmpty());
    if (!icon.isEmpty()) {
        const QPixmap picture(":/res/" + icon);
        QVERIFY(!picture.isNull());
        QCOMPARE(drawn(action->icon(), picture), picture.toImage().convertToFormat(QImage::Format_ARGB32));
    }
    QCOMPARE(action->shortcuts().size(), shortcut.isEmpty() ? 0 : 1);
    QCOMPARE(action->shortcut().toString(), shortcut);
    QCOMPARE(action->isCheckable(), checkable);
    QCOMPARE(action->isChecked(), checked);
    QCOMPARE(action->isEnabled(), enabled);
    QVERIFY(!action->actionGroup());
}

void TestMainWindow::actionsAreTheWindowsOwnAndInOrder()
{
    const QList<QAction *> own = bench.window->findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(textsOf(own), (QStringList{"&Open camera",
                                        "&Close camera",
                                        "&Save hot pixel list",
                                        "&Load hot pixel list",
                                        "&Highlight",
                                        "&Write hot pixel",
                                        "Hot pixel correction",
                                        "&Add hot pixel",
                                        "&Delete hot pixel",
                                        "Clear user hot pixel",
                                        "Detec&t hot pixel",
                                        "1:1",
                                        "2:1",
                                        "4:1",
                                        "1:2",
                                        "1:4",
                                        "To fit",
                                        "1:1",
                                        "&Usage",
                                        "&About...",
                                        "&Export hot pixel list",
                                        "&Import hot pixel list",
                                        "E&xit",
                                        "Camera list",
                                        "Hot pixel list",
                                        "Magnifier",
                                        "Camera properties"}));
}

/// Kept: nothing disables them before the camera list reports its first change.
void TestMainWindow::saveAndLoadStartEnabledUntilTheFirstListChange()
{
    emptyTheBench();
    QVERIFY(bench.enabled("saveListAction"));
    QVERIFY(bench.enabled("loadListAction"));
    kelvosim::addCamera(WindowFixture::spec());
    QTRY_COMPARE(bench.driver->cameraTable()->model()->rowCount(), 1);
    QVERIFY(!bench.enabled("saveListAction"));
    QVERIFY(!bench.enabled("loadListAction"));
}

/// The window refreshes the camera list before it is shown, and the first row is selected.
void TestMainWindow::withCamerasOnlyOpeningStartsEnabled()
{
    QCOMPARE(bench.driver->cameraTable()->model()->rowCount(), 3);
    QVERIFY(bench.enabled("openCameraAction"));
    for (const char *name : {"closeCameraAction", "saveListAction", "loadListAction", "correctionAction",
                             "detectAction", "addBadpixelAction", "writeListAction", "zoomAction"})
        QVERIFY2(!bench.enabled(name), name);
}

void TestMainWindow::menusAreInOrder()
{
    QCOMPARE(textsOf(bench.window->menuBar()->actions()), (QStringList{"&File", "&View", "&Help"}));
    QCOMPARE(
        textsOf(menu(0)->actions()),
        (QStringList{"&Open camera", "&Close camera", "-", "&Save hot pixel list", "&Load hot pixel list",
                     "-", "&Export hot pixel list", "&Import hot pixel list", "-", "E&xit"}));
    QCOMPARE(textsOf(menu(1)->actions()), (QStringList{"Camera list", "Hot pixel list", "Magnifier",
                                                       "Camera properties", "-", "&Highlight"}));
    QCOMPARE(textsOf(menu(2)->actions()), (QStringList{"&Usage", "-", "&About..."}));
    for (int number = 0; number < 3; ++number) {
        QCOMPARE(menu(number)->parent(), bench.window->menuBar());
        for (const QAction *action : menu(number)->actions())
            QVERIFY(action->isSeparator() || action->parent() == bench.window.get());
    }
}

void TestMainWindow::toolBarIsInOrder()
{
    const QStringList expected{"&Open camera",
                               "&Close camera",
                               "-",
                               "Hot pixel correction",
                               "Detec&t hot pixel",
                               "&Write hot pixel",
                               "&Add hot pixel",
                               "&Delete hot pixel",
                               "-",
                               "&Highlight",
                               "1:1"};
    QCOMPARE(textsOf(toolBar()->actions()), expected);
    for (const QAction *action : toolBar()->actions())
        QVERIFY(action->isSeparator() || action->parent() == bench.window.get());
    QCOMPARE(toolBar()->actions().last(), bench.driver->action("zoomAction"));
}

void TestMainWindow::dialoguesOpenFromTheirActions_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("title");
    QTest::newRow("saveListAction") << "QFileDialog"
                                    << "Save hot pixel list";
    QTest::newRow("loadListAction") << "QFileDialog"
                                    << "Open hot pixel list";
    QTest::newRow("exportListAction") << "QFileDialog"
                                      << "Export hot pixel list";
    QTest::newRow("importListAction") << "QFileDialog"
                                      << "Import hot pixel list";
    QTest::newRow("writeListAction") << "QMessageBox"
                                     << "";
    QTest::newRow("detectAction") << "DetectionDialogue"
                                  << "Hot pixel detection";
    QTest::newRow("usageAction") << "QMessageBox"
                                 << "Usage";
    QTest::newRow("aboutAction") << "Dialog_About"
                                 << "About Kelvo Speckmend";
}

void TestMainWindow::dialoguesOpenFromTheirActions()
{
    QFETCH(QString, className);
    QFETCH(QString, title);
    bench.open(bench.mono);
    QTRY_VERIFY(bench.enabled(QTest::currentDataTag()));
    QStringList seen;
    WindowDriver::whenModal([&](QWidget *dialogue) {
        seen << dialogue->metaObject()->className() << dialogue->windowTitle();
        QCOMPARE(dialogue->parentWidget(), static_cast<QWidget *>(bench.window.get()));
        dialogue->close();
    });
    bench.driver->trigger(QTest::currentDataTag());
    QCOMPARE(seen, (QStringList{className, title}));
    QVERIFY(!QApplication::activeModalWidget());
}

void TestMainWindow::highlightSwitchesTheOverlays()
{
    const auto showFrame = [this](std::uint8_t grey) {
        bench.pushFlat(bench.mono, grey);
        const auto shown = [this] { return bench.driver->shownImage(); };
        QTRY_VERIFY(!shown().isNull() && qGray(shown().pixel(70, 5)) == grey);
    };
    bench.open(bench.mono);
    showFrame(40);
    QVERIFY(isColoured(bench.driver->shownImage()));
    bench.driver->trigger("highlightAction");
    showFrame(60);
    QVERIFY(!isColoured(bench.driver->shownImage()));
    bench.driver->trigger("highlightAction");
    showFrame(80);
    QVERIFY(isColoured(bench.driver->shownImage()));
}

void TestMainWindow::clearingRemovesTheUserEntriesAndStaysEnabled()
{
    bench.open(bench.mono);
    for (const int x : {31, 32, 33}) {
        bench.moveTo(QPoint(x, 40));
        bench.driver->trigger("addBadpixelAction");
    }
    QCOMPARE(bench.rows(), 5);
    bench.driver->trigger("clearBadpixelAction");
    QCOMPARE(bench.rows(), 2);
    bench.driver->trigger("closeCameraAction");
    QVERIFY(bench.enabled("clearBadpixelAction"));
}

void TestMainWindow::exitClosesTheWindow()
{
    QVERIFY(bench.window->isVisible());
    bench.driver->trigger("exitAction");
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindow::shortcutsWorkWithAHiddenToolBar()
{
    bench.open(bench.mono);
    QTRY_VERIFY(bench.enabled("addBadpixelAction"));
    toolBar()->hide();
    bench.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(bench.window.get()));
    const int before = bench.rows();
    QTest::keyClick(bench.window.get(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(bench.rows(), before + 1);
    QTRY_VERIFY(bench.enabled("deleteBadpixelAction"));
    QTest::keyClick(bench.window.get(), Qt::Key_Delete);
    QCOMPARE(bench.rows(), before);
}

void TestMainWindow::languageChangeRetranslatesTheForm()
{
    toolBar()->setWindowTitle("changed");
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(bench.window.get(), &change);
    QCOMPARE(toolBar()->windowTitle(), QString("Toolbar"));
}

void TestMainWindow::theZoomMenuOpensWithOneClick()
{
    bench.open(bench.mono);
    QTRY_VERIFY(bench.enabled("zoomAction"));
    QAction *zoom = bench.driver->action("zoomAction");
    auto *button = qobject_cast<QToolButton *>(toolBar()->widgetForAction(zoom));
    bool opened = false;
    connect(zoom->menu(), &QMenu::aboutToShow, [&] {
        opened = true;
        QTimer::singleShot(0, zoom->menu(), &QMenu::close);
    });
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(5, button->height() / 2));
    QVERIFY(opened);
    QCOMPARE(zoom->menu()->parent(), bench.window.get());
    QList<QAction *> expected;
    for (const char *name : {"zoom1to4Action", "zoom1to2Action", "zoom1to1Action", "zoom2to1Action",
                             "zoom4to1Action", "zoomToFitAction"})
        expected << bench.driver->action(name);
    QCOMPARE(zoom->menu()->actions(), expected);
}

void TestMainWindow::oneToTwoChecksOnlyItself()
{
    bench.driver->trigger("zoom1to2Action");
    for (const char *name : ZoomNames)
        QVERIFY2(bench.driver->action(name)->isChecked() == (qstrcmp(name, "zoom1to2Action") == 0), name);
    QCOMPARE(bench.driver->action("zoomAction")->text(), QString("1:2"));
}

void TestMainWindow::zoomLevels_data()
{
    QTest::addColumn<QSize>("shown");
    QTest::newRow("1:1") << QSize(96, 80);
    QTest::newRow("2:1") << QSize(192, 160);
    QTest::newRow("4:1") << QSize(384, 320);
    QTest::newRow("1:2") << QSize(48, 40);
    QTest::newRow("1:4") << QSize(24, 20);
}

void TestMainWindow::zoomLevels()
{
    QFETCH(QSize, shown);
    const QString text = QTest::currentDataTag();
    const QString name = QString("zoom%1Action").arg(QString(text).replace(":", "to"));
    bench.open(bench.mono);
    bench.driver->trigger(qPrintable(name));
    QCOMPARE(bench.driver->action("zoomAction")->text(), text);
    for (const char *other : ZoomNames)
        QVERIFY2(bench.driver->action(other)->isChecked() == (name == other), other);
    bench.pushFlat(bench.mono, 40);
    QTRY_COMPARE(bench.driver->display()->widget()->size(), shown);
}

void TestMainWindow::choosingTheCheckedZoomKeepsItChecked()
{
    bench.driver->trigger("zoom1to1Action");
    QVERIFY(bench.driver->action("zoom1to1Action")->isChecked());
}

void TestMainWindow::anUnknownActionUnchecksAllZooms()
{
    QAction stranger("3:1");
    bench.invoke("onZoomChanged", Q_ARG(QAction *, &stranger));
    for (const char *name : ZoomNames)
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

void TestMainWindow::docksHaveTitlesNamesAreasAndContents_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<Qt::DockWidgetAreas>("areas");
    QTest::addColumn<QString>("content");
    const Qt::DockWidgetAreas sides = Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea;
    QTest::newRow("CameraListDock") << "Camera list" << sides << "QTableView cameraTable";
    QTest::newRow("BadpixelListDock") << "Hot pixel list" << sides << "QTableView badpixelTable";
    QTest::newRow("MagnifierDock") << "Magnifier" << sides << "MagnifierControl ";
    QTest::newRow("CameraSliderDock")
        << "Camera properties" << Qt::DockWidgetAreas(Qt::AllDockWidgetAreas) << "ParameterBlockWidget ";
}

void TestMainWindow::docksHaveTitlesNamesAreasAndContents()
{
    QFETCH(QString, title);
    QFETCH(Qt::DockWidgetAreas, areas);
    QFETCH(QString, content);
    QDockWidget *found = dock(QTest::currentDataTag());
    QVERIFY(found);
    QCOMPARE(found->windowTitle(), title);
    QCOMPARE(found->allowedAreas(), areas);
    QCOMPARE(found->parent(), bench.window.get());
    QCOMPARE(bench.window->dockWidgetArea(found), Qt::LeftDockWidgetArea);
    QCOMPARE(found->widget()->metaObject()->className() + QString(" ") + found->widget()->objectName(),
             content);
}

void TestMainWindow::docksStandInOrderOnTheLeft()
{
    const QDockWidget *cameras = dock("CameraListDock");
    QTRY_VERIFY(!cameras->visibleRegion().isEmpty());
    const QDockWidget *magnifier = dock("MagnifierDock");
    const QDockWidget *properties = dock("CameraSliderDock");
    QVERIFY(cameras->geometry().bottom() < magnifier->geometry().top());
    QVERIFY(magnifier->geometry().bottom() < properties->geometry().top());
    for (const QDockWidget *each : {cameras, magnifier, properties})
        QVERIFY(each->geometry().right() < bench.window->centralWidget()->geometry().left());
    QCOMPARE(bench.window->findChildren<QDockWidget *>().size(), 4);
}

void TestMainWindow::theHotPixelListIsATabBehindTheCameraList()
{
    QDockWidget *cameras = dock("CameraListDock");
    QDockWidget *pixels = dock("BadpixelListDock");
    QCOMPARE(bench.window->tabifiedDockWidgets(cameras), QList<QDockWidget *>{pixels});
    QTRY_VERIFY(!cameras->visibleRegion().isEmpty());
    QVERIFY(pixels->visibleRegion().isEmpty());
    const auto *tabs = bench.window->findChild<QTabBar *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(tabs);
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), QString("Camera list"));
    QCOMPARE(tabs->tabText(1), QString("Hot pixel list"));
    QCOMPARE(tabs->currentIndex(), 0);
}

void TestMainWindow::theViewMenuShowsAClosedDockUnchecked_data()
{
    QTest::addColumn<QString>("toggle");
    QTest::newRow("CameraListDock") << "showCameraListAction";
    QTest::newRow("BadpixelListDock") << "showBadpixelListAction";
    QTest::newRow("MagnifierDock") << "showMagnifierAction";
    QTest::newRow("CameraSliderDock") << "showCameraSliderAction";
}

void TestMainWindow::theViewMenuShowsAClosedDockUnchecked()
{
    QFETCH(QString, toggle);
    QDockWidget *closed = dock(QTest::currentDataTag());
    QTRY_VERIFY(closed->isVisible());
    emit menu(1)->aboutToShow();
    for (const char *name :
         {"showCameraListAction", "showBadpixelListAction", "showMagnifierAction", "showCameraSliderAction"})
        QVERIFY2(bench.driver->action(name)->isChecked(), name);
    closed->close();
    emit menu(1)->aboutToShow();
    for (const char *name :
         {"showCameraListAction", "showBadpixelListAction", "showMagnifierAction", "showCameraSliderAction"})
        QVERIFY2(bench.driver->action(name)->isChecked() == (toggle != name), name);
}

void TestMainWindow::dockTogglesFlipTheirDock_data()
{
    theViewMenuShowsAClosedDockUnchecked_data();
}

void TestMainWindow::dockTogglesFlipTheirDock()
{
    QFETCH(QString, toggle);
    const QDockWidget *flipped = dock(QTest::currentDataTag());
    QTRY_VERIFY(flipped->isVisible());
    bench.driver->trigger(qPrintable(toggle));
    for (const QDockWidget *each : bench.window->findChildren<QDockWidget *>())
        QCOMPARE(each->isVisible(), each != flipped);
    bench.driver->trigger(qPrintable(toggle));
    QVERIFY(flipped->isVisible());
}

void TestMainWindow::aMagnifierDockThatIsBuiltWhileACameraIsOpenShowsTheFocus()
{
    bench.open(bench.mono);
    bench.pushFlat(bench.mono, 40);
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    delete dock("MagnifierDock");
    bench.moveTo(QPoint(31, 47));
    bench.invoke("createMagnifierDock");
    auto *magnifier = bench.window->findChild<MagnifierControl *>()->magnifier();
    QSignalSpy wanted(magnifier, &Magnifier::changePosition);
    QTest::keyClick(magnifier, Qt::Key_Right);
    QCOMPARE(wanted.first().first().toPoint(), QPoint(32, 47));
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
    QVERIFY(!table->horizontalHeader()->isHidden());
    QVERIFY(!table->horizontalHeader()->isSortIndicatorShown());
    QVERIFY(!table->horizontalHeader()->highlightSections());
    QVERIFY(table->horizontalHeader()->stretchLastSection());
    if (name == "badpixelTable")
        QCOMPARE(table->horizontalHeader()->defaultSectionSize(), 40);
}

void TestMainWindow::tablesShowTheirListsWithTheWindowsSelection()
{
    QCOMPARE(bench.driver->cameraTable()->model()->metaObject()->className(), "CameraListModel");
    QCOMPARE(bench.driver->badpixelTable()->model()->metaObject()->className(), "BadpixelListModel");
    for (const QTableView *table : {bench.driver->cameraTable(), bench.driver->badpixelTable()})
        QCOMPARE(table->selectionModel()->parent(), bench.window.get());
}

void TestMainWindow::onlyTheClassColumnHasADelegate()
{
    const QTableView *table = bench.driver->badpixelTable();
    for (int column = 0; column < 3; ++column) {
        const bool edits =
            qobject_cast<PixelclassDelegate *>(table->itemDelegateForColumn(column)) != nullptr;
        QCOMPARE(edits, column == 2);
        QVERIFY(edits || !table->itemDelegateForColumn(column));
    }
    for (int column = 0; column < 5; ++column)
        QVERIFY(!bench.driver->cameraTable()->itemDelegateForColumn(column));
}

void TestMainWindow::theCameraColumnsFitTheirContents()
{
    const QTableView *table = bench.driver->cameraTable();
    QVERIFY(table->model()->rowCount() > 0);
    for (int column = 0; column < 4; ++column) { // the last one fills the rest
        int widest = table->horizontalHeader()->sectionSizeHint(column);
        for (int row = 0; row < table->model()->rowCount(); ++row)
            widest = qMax(widest, table->sizeHintForIndex(table->model()->index(row, column)).width() + 1);
        QCOMPARE(table->columnWidth(column), widest); // the grid takes a pixel
    }
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

    bench.driver->badpixelTable()->horizontalHeader()->setSortIndicator(1, Qt::DescendingOrder);
    QCOMPARE(bench.cell(0, 0), QString("20"));
}

void TestMainWindow::theCameraMenuFollowsTheActions()
{
    const auto offered = [this] {
        QList<bool> enabled;
        const QStringList texts = rightClick(bench.driver->cameraTable(), [&](const QMenu *open) {
            for (const QAction *action : open->actions())
                enabled << action->isEnabled();
        });
        return texts == QStringList{"&Open camera", "&Close camera"} ? enabled : QList<bool>();
    };
    bench.driver->cameraTable()->clearSelection();
    QCOMPARE(offered(), (QList<bool>{false, false}));
    bench.driver->selectCamera(bench.mono);
    QCOMPARE(offered(), (QList<bool>{true, false}));
    bench.driver->trigger("openCameraAction");
    QCOMPARE(offered(), (QList<bool>{false, true}));
    // From another row it offers to open that one, and closing does nothing.
    bench.driver->selectCamera(bench.bayer);
    QCOMPARE(offered(), (QList<bool>{true, false}));
    rightClick(bench.driver->cameraTable(), [](QMenu *open) { open->actions().at(1)->trigger(); });
    QCOMPARE(kelvosim::openHandles(), 1);
}

void TestMainWindow::theHotPixelMenuFollowsListAndSelection()
{
    const auto offered = [this] { return rightClick(bench.driver->badpixelTable()); };
    QCOMPARE(offered(), QStringList{"&Add hot pixel"});
    bench.open(bench.mono);
    QCOMPARE(offered(), QStringList{"&Add hot pixel"}); // nothing beyond the factory's entries
    bench.driver->badpixelTable()->selectRow(1);
    QCOMPARE(offered(), (QStringList{"&Add hot pixel", "&Delete hot pixel"}));
    bench.moveTo(QPoint(33, 44));
    bench.driver->trigger("addBadpixelAction");
    QCOMPARE(offered(), (QStringList{"&Add hot pixel", "&Delete hot pixel", "Clear user hot pixel"}));
    bench.driver->badpixelTable()->clearSelection();
    QCOMPARE(offered(), (QStringList{"&Add hot pixel", "Clear user hot pixel"}));
}

void TestMainWindow::contextMenusOpenAtTheCursorAndStayWithTheWindow_data()
{
    tablesSelectOneRow_data();
}

/// Kept: each click leaves a menu behind, which goes with the window.
void TestMainWindow::contextMenusOpenAtTheCursorAndStayWithTheWindow()
{
    QFETCH(QString, name);
    const auto menus = [this] {
        return bench.window->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly).size();
    };
    const int before = menus();
    const QPoint cursor(140, 160);
    QCursor::setPos(cursor);
    QPoint shownAt;
    const auto *table = bench.window->findChild<QTableView *>(name);
    rightClick(table, [&](const QMenu *open) { shownAt = open->pos(); });
    QCOMPARE(shownAt, cursor);
    rightClick(table);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(menus(), before + 2);
}

void TestMainWindow::theImageLabelIsHiddenAtFirst()
{
    QVERIFY(!bench.driver->display()->widget()->isVisible());
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
