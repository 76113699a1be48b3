// SPDX-License-Identifier: MIT
// A person's work on the hot pixel list: focus, selection, add, delete, clear, write into the camera.

#include "windowfixture.h"

#include "../hotpixels/badpixellistmodelpeer.h"
#include "displaywidget.h"

#include <QApplication>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStatusBar>
#include <QtTest>

class TestHotpixelWork : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.window.reset(); }

    void addingSelectsTheNewEntry();
    void addingTwiceAddsOnce();
    void addingAtAFactoryEntryAddsNothing();
    void deletingRemovesTheSelectedUserEntry();
    void deletingAnEntryTakesItsCircleAway();
    void deletingWithoutASelectionDoesNothing();
    void deletingAFactoryEntryDoesNothing();
    void onlyUserEntriesEnableDeletion();
    void selectingTheSameRowAgainKeepsDeletionEnabled();
    void clearingKeepsTheFactoryEntries();
    void clearingTakesTheCirclesAwayAtOnce();
    void aChangedClassUpdatesDeletion();
    void anIgnoredEntryCannotBeDeleted();
    void sortingLeavesDeletionToTheEntryThatIsSelectedNow();
    void clearingALongListLeavesTheTableWhole();
    void clearingLeavesTheTableItsOneSelection();

    void theFocusIsClampedToTheImage();
    void withoutAnImageTheFocusHasNoUpperBound();
    void theFocusSelectsTheEntryUnderIt();
    void theFocusLeavesTheSelectionAloneWhereNoEntryLies();
    void anEntryOutsideTheImageCanBeSelected();
    void oneOfTwoEntriesAtTheSamePlaceStaysSelected();
    void aFocusThatIsClampedOntoAnotherEntrySelectsThatOne();
    void aClickBesideEntriesMovesTheFocus();
    void aClickOnAnEntrySelectsIt();
    void selectingScrollsInProportion();
    void atOneToTwoTheZoomFactorIsOne();
    void aZoomFactorOfZeroLeavesTheScrollBarsAlone();
    void aHalvedScaleChecksTheZoomAndSaysSo();

    void theContextMenuFollowsListAndSelection();
    void writingAsksAndStoresTheUserEntries();
    void answeringNoWritesNothing();
    void aFailedWriteIsShownInABoxAndInTheStatusBar();
    void tooManyEntriesAreRefused();
    void writingToACameraWithoutStorageIsRefused();
    void aListWithoutUserEntriesDeletesTheStoredOne();

private:
    void select(int row) { bench.driver->badpixelTable()->selectRow(row); }
    int selectedRow() const
    {
        const QModelIndexList rows = bench.driver->badpixelTable()->selectionModel()->selectedIndexes();
        return rows.isEmpty() ? -1 : rows.first().row();
    }
    void add(int x, int y)
    {
        bench.moveTo(QPoint(x, y));
        bench.invoke("addNewBadpixel");
    }
    /// Waits until a frame is shown, so that the image has a size.
    void showFrame()
    {
        bench.pushFlat(bench.mono, 30);
        QTRY_VERIFY(bench.driver->display()->widget()->width() >= 90);
    }

    WindowFixture bench;
};

void TestHotpixelWork::init()
{
    bench.openOnFreshBench(bench.mono);
    QTRY_VERIFY(bench.enabled("addBadpixelAction"));
    QCOMPARE(bench.rows(), 2);
}

void TestHotpixelWork::addingSelectsTheNewEntry()
{
    bench.moveTo(QPoint(33, 44));
    bench.driver->trigger("addBadpixelAction");
    QCOMPARE(bench.rows(), 3);
    QCOMPARE(bench.cell(2, 0), QString("33"));
    QCOMPARE(bench.cell(2, 1), QString("44"));
    QCOMPARE(bench.cell(2, 2), QString("user"));
    QCOMPARE(selectedRow(), 2);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
}

void TestHotpixelWork::addingTwiceAddsOnce()
{
    add(33, 44);
    add(33, 44);
    QCOMPARE(bench.rows(), 3);
}

void TestHotpixelWork::addingAtAFactoryEntryAddsNothing()
{
    add(10, 10);
    QCOMPARE(bench.rows(), 2);
}

void TestHotpixelWork::deletingRemovesTheSelectedUserEntry()
{
    add(33, 44);
    add(50, 51);
    select(2);
    bench.driver->trigger("deleteBadpixelAction");
    QCOMPARE(bench.rows(), 3);
    QCOMPARE(bench.cell(2, 0), QString("50"));
}

void TestHotpixelWork::deletingAnEntryTakesItsCircleAway()
{
    showFrame();
    add(70, 60);
    add(33, 44);
    select(3);
    QVERIFY(bench.isCircledAsUsers(QPoint(33, 44)));
    bench.driver->trigger("deleteBadpixelAction");
    QVERIFY(!bench.isCircledAsUsers(QPoint(33, 44)));
    QVERIFY(bench.isCircledAsUsers(QPoint(70, 60)));
}

void TestHotpixelWork::deletingWithoutASelectionDoesNothing()
{
    add(33, 44);
    bench.driver->badpixelTable()->clearSelection();
    bench.invoke("deleteBadpixel");
    QCOMPARE(bench.rows(), 3);
}

void TestHotpixelWork::deletingAFactoryEntryDoesNothing()
{
    select(0);
    bench.invoke("deleteBadpixel");
    QCOMPARE(bench.rows(), 2);
}

void TestHotpixelWork::onlyUserEntriesEnableDeletion()
{
    add(33, 44);
    select(0);
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
    select(2);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
    bench.driver->badpixelTable()->clearSelection();
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
}

void TestHotpixelWork::selectingTheSameRowAgainKeepsDeletionEnabled()
{
    add(33, 44);
    select(2);
    select(2);
    bench.moveTo(QPoint(33, 44));
    QCOMPARE(selectedRow(), 2);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
}

void TestHotpixelWork::clearingKeepsTheFactoryEntries()
{
    add(33, 44);
    add(35, 44);
    bench.driver->trigger("clearBadpixelAction");
    QCOMPARE(bench.rows(), 2);
    QCOMPARE(bench.cell(0, 0), QString("10"));
    QCOMPARE(bench.cell(1, 0), QString("20"));
}

void TestHotpixelWork::clearingTakesTheCirclesAwayAtOnce()
{
    showFrame();
    const QImage before = bench.driver->shownImage();
    add(33, 44);
    add(70, 60);
    bench.moveTo(QPoint(0, 0));
    bench.driver->display()->redrawImage();
    QVERIFY(bench.driver->shownImage() != before);
    bench.driver->trigger("clearBadpixelAction");
    QCOMPARE(bench.driver->shownImage(), before);
}

void TestHotpixelWork::aChangedClassUpdatesDeletion()
{
    add(33, 44);
    QAbstractItemModel *list = bench.driver->badpixelTable()->model();
    QVERIFY(list->setData(list->index(2, 2), "factory"));
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
    QVERIFY(list->setData(list->index(2, 2), "user"));
    QVERIFY(bench.enabled("deleteBadpixelAction"));
}

void TestHotpixelWork::anIgnoredEntryCannotBeDeleted()
{
    add(33, 44);
    auto *list = static_cast<BadpixelListModel *>(bench.driver->badpixelTable()->model());
    BadpixelListModelPeer::append(*list, {Badpixel{50, 51, Ignore}});
    select(2);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
    select(3);
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
}

void TestHotpixelWork::sortingLeavesDeletionToTheEntryThatIsSelectedNow()
{
    add(5, 44);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
    bench.driver->badpixelTable()->sortByColumn(0, Qt::AscendingOrder);
    QCOMPARE(bench.cell(selectedRow(), 0), QString("20")); // the last row is a factory entry now
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
}

void TestHotpixelWork::clearingALongListLeavesTheTableWhole()
{
    constexpr int Count = 100000;
    auto *list = static_cast<BadpixelListModel *>(bench.driver->badpixelTable()->model());
    for (int i = 0; i < Count; ++i)
        list->addBadpixel(QPoint(100 + i % 1000, i / 1000));
    select(Count / 2);
    bench.driver->trigger("clearBadpixelAction");
    QCOMPARE(bench.rows(), 2);
    const QHeaderView *header = bench.driver->badpixelTable()->verticalHeader();
    QCOMPARE(header->count(), 2);
    QCOMPARE(header->sectionSize(1), header->minimumSectionSize());
    QCOMPARE(selectedRow(), -1);
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
    add(33, 44);
    QCOMPARE(header->count(), 3);
}

void TestHotpixelWork::clearingLeavesTheTableItsOneSelection()
{
    const QHeaderView *header = bench.driver->badpixelTable()->verticalHeader();
    const int before = header->findChildren<QItemSelectionModel *>().count();
    for (int i = 0; i < 3; ++i) {
        add(33, 44);
        bench.driver->trigger("clearBadpixelAction");
    }
    QCOMPARE(header->findChildren<QItemSelectionModel *>().count(), before);
    QCOMPARE(header->selectionModel(), bench.driver->badpixelTable()->selectionModel());
}

void TestHotpixelWork::theFocusIsClampedToTheImage()
{
    showFrame();
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    const QPair<QPoint, QPoint> moves[] = {{{-1, -5}, {0, 0}},
                                           {{95, 79}, {95, 79}},
                                           {{96, 80}, {95, 79}},
                                           {{5, 4000}, {5, 79}},
                                           {{-3, 20}, {0, 20}}};
    for (const auto &[wanted, actual] : moves) {
        bench.moveTo(wanted);
        QCOMPARE(moved.last().first().toPoint(), actual);
    }
}

void TestHotpixelWork::withoutAnImageTheFocusHasNoUpperBound()
{
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    bench.moveTo(QPoint(5000, -2));
    QCOMPARE(moved.last().first().toPoint(), QPoint(5000, 0));
}

void TestHotpixelWork::theFocusSelectsTheEntryUnderIt()
{
    bench.moveTo(QPoint(20, 30));
    QCOMPARE(selectedRow(), 1);
    bench.moveTo(QPoint(10, 10));
    QCOMPARE(selectedRow(), 0);
}

void TestHotpixelWork::theFocusLeavesTheSelectionAloneWhereNoEntryLies()
{
    select(1);
    bench.moveTo(QPoint(60, 60));
    QCOMPARE(selectedRow(), 1);
}

void TestHotpixelWork::anEntryOutsideTheImageCanBeSelected()
{
    add(3000, 40);
    showFrame();
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    select(0);
    select(2);
    QCOMPARE(selectedRow(), 2);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
    QCOMPARE(moved.last().first().toPoint(), QPoint(95, 40));
}

void TestHotpixelWork::oneOfTwoEntriesAtTheSamePlaceStaysSelected()
{
    bench.driver->trigger("closeCameraAction");
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("free"));
    kelvosim::setStoredUserList("KVMONO", {{10, 10}}); // the factory's list has it too
    bench.open(bench.mono);
    QCOMPARE(bench.rows(), 3);
    select(2);
    QCOMPARE(selectedRow(), 2);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
    bench.driver->trigger("deleteBadpixelAction");
    QCOMPARE(bench.rows(), 2);
}

void TestHotpixelWork::aFocusThatIsClampedOntoAnotherEntrySelectsThatOne()
{
    add(3000, 40);
    showFrame();
    add(95, 40);
    select(0);
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
    select(2); // outside the image; the focus lands on the other one
    QCOMPARE(selectedRow(), 3);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
}

void TestHotpixelWork::aClickBesideEntriesMovesTheFocus()
{
    showFrame();
    select(0);
    QSignalSpy moved(bench.window.get(), &MainWindow::magnifierPositionChanged);
    bench.driver->clickPixel(QPoint(60, 61));
    QCOMPARE(moved.last().first().toPoint(), QPoint(60, 61));
    QCOMPARE(selectedRow(), -1);
}

void TestHotpixelWork::aClickOnAnEntrySelectsIt()
{
    showFrame();
    bench.driver->clickPixel(QPoint(18, 33));
    QCOMPARE(selectedRow(), 1);
}

void TestHotpixelWork::selectingScrollsInProportion()
{
    bench.window->resize(600, 400);
    bench.driver->trigger("zoom4to1Action");
    bench.pushFlat(bench.mono, 30);
    QTRY_COMPARE(bench.driver->display()->widget()->width(), 384);
    bench.driver->display()->setMaximumSize(120, 100);
    QTRY_VERIFY(bench.driver->display()->verticalScrollBar()->maximum() > 0);
    QScrollBar *vertical = bench.driver->display()->verticalScrollBar();
    QScrollBar *horizontal = bench.driver->display()->horizontalScrollBar();
    select(1);
    QCOMPARE(vertical->value(), vertical->maximum() / (320 / 4) * 30);
    QCOMPARE(horizontal->value(), horizontal->maximum() / (384 / 4) * 20);
    QVERIFY(vertical->value() > 0);
}

void TestHotpixelWork::atOneToTwoTheZoomFactorIsOne()
{
    bench.window->resize(600, 400);
    bench.driver->trigger("zoom4to1Action"); // so that the factor is not one already
    bench.driver->trigger("zoom1to2Action");
    bench.pushFlat(bench.mono, 30);
    QTRY_COMPARE(bench.driver->display()->widget()->width(), 48);
    bench.driver->display()->setMaximumSize(30, 20);
    QScrollBar *vertical = bench.driver->display()->verticalScrollBar();
    QTRY_VERIFY(vertical->maximum() > 0);
    vertical->setRange(0, 400); // large enough for the division to show the factor
    select(1);
    QCOMPARE(vertical->value(), 400 / (40 / 1) * 30);
}

void TestHotpixelWork::aZoomFactorOfZeroLeavesTheScrollBarsAlone()
{
    bench.window->resize(600, 400);
    bench.driver->trigger("zoom4to1Action");
    bench.pushFlat(bench.mono, 30);
    QTRY_COMPARE(bench.driver->display()->widget()->width(), 384);
    bench.driver->display()->setMaximumSize(120, 100);
    QTRY_VERIFY(bench.driver->display()->verticalScrollBar()->maximum() > 0);
    bench.invoke("updateScaleFactor", Q_ARG(int, 0));
    bench.driver->display()->verticalScrollBar()->setValue(7);
    select(1);
    QCOMPARE(bench.driver->display()->verticalScrollBar()->value(), 7);
}

void TestHotpixelWork::aHalvedScaleChecksTheZoomAndSaysSo()
{
    const auto halvedTo = [this](double scale) {
        QMetaObject::invokeMethod(bench.driver->display(), "scaleChanged", Q_ARG(double, scale));
    };
    // What follows the point is cut off on the way.
    const QPair<double, const char *> cases[] = {
        {2.0, "zoom2to1Action"}, {1.0, "zoom1to1Action"}, {2.9, "zoom2to1Action"}};
    for (const auto &[scale, zoom] : cases) {
        bench.driver->trigger("zoom4to1Action");
        bench.window->statusBar()->clearMessage();
        halvedTo(scale);
        QVERIFY(bench.driver->action(zoom)->isChecked());
        QVERIFY(!bench.driver->action("zoom4to1Action")->isChecked());
        QCOMPARE(bench.driver->message(), QString("The image is too big and will be resized"));
    }
    bench.driver->trigger("zoom4to1Action");
    halvedTo(0.5);
    QVERIFY(bench.driver->action("zoom4to1Action")->isChecked());
}

void TestHotpixelWork::theContextMenuFollowsListAndSelection()
{
    const auto offered = [this] {
        QStringList texts;
        QTimer::singleShot(0, [&] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QVERIFY(menu);
            for (const QAction *action : menu->actions())
                texts << action->text();
            menu->close();
        });
        bench.invoke("showBadpixelListContextMenu", Q_ARG(QPoint, QPoint()));
        return texts;
    };
    QCOMPARE(offered(), QStringList{"&Add hot pixel"});
    add(33, 44);
    bench.driver->badpixelTable()->clearSelection();
    QCOMPARE(offered(), (QStringList{"&Add hot pixel", "Clear user hot pixel"}));
    select(0);
    QCOMPARE(offered(), (QStringList{"&Add hot pixel", "&Delete hot pixel", "Clear user hot pixel"}));
}

void TestHotpixelWork::writingAsksAndStoresTheUserEntries()
{
    add(33, 44);
    add(50, 51);
    bench.window->statusBar()->clearMessage();
    QString text;
    WindowDriver::whenModal([&](QWidget *modal) {
        auto *box = qobject_cast<QMessageBox *>(modal);
        QVERIFY(box);
        text = box->text();
        QCOMPARE(box->icon(), QMessageBox::Warning);
        QCOMPARE(box->informativeText(), QString("Do you want to continue?"));
        QCOMPARE(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
        box->button(QMessageBox::Yes)->click();
    });
    bench.driver->trigger("writeListAction");
    QCOMPARE(text,
             QString("This action will completely overwrite the user defined hot pixel list in the EEPROM of "
                     "the camera."));
    QCOMPARE(kelvosim::storedUserList("KVMONO"), (std::vector<kelvosim::Pixel>{{33, 44}, {50, 51}}));
    QVERIFY(bench.driver->message().isEmpty());
}

void TestHotpixelWork::answeringNoWritesNothing()
{
    add(33, 44);
    WindowDriver::answerBox(QMessageBox::No);
    kelvosim::clearLog();
    bench.driver->trigger("writeListAction");
    QVERIFY(kelvosim::storedUserList("KVMONO").empty());
    QCOMPARE(testcamera::calls().filter("vx_HotPixel"), QStringList{"vx_HotPixel 32769"});
}

void TestHotpixelWork::aFailedWriteIsShownInABoxAndInTheStatusBar()
{
    add(33, 44);
    bench.window->statusBar()->clearMessage();
    kelvosim::failCall("vx_HotPixel", 1, 9, "EEPROM busy", 33036);
    QString title;
    QString text;
    WindowDriver::whenModal([&](QWidget *question) {
        WindowDriver::whenModal([&, question](QWidget *modal) {
            QVERIFY(modal != question);
            auto *box = qobject_cast<QMessageBox *>(modal);
            title = box->windowTitle();
            text = box->text();
            QCOMPARE(box->icon(), QMessageBox::Critical);
            QVERIFY(bench.driver->message().isEmpty());
            box->button(QMessageBox::Ok)->click();
        });
        qobject_cast<QMessageBox *>(question)->button(QMessageBox::Yes)->click();
    });
    bench.driver->trigger("writeListAction");
    QCOMPARE(title, QString("Write failed"));
    QCOMPARE(text, QString("Error writing hotpixel list"));
    QCOMPARE(bench.driver->message(), QString("Error writing hotpixel list"));
    QCOMPARE(bench.rows(), 3);
}

void TestHotpixelWork::tooManyEntriesAreRefused()
{
    kelvosim::CameraSpec spec = WindowFixture::spec();
    spec.serial = "KVTINY";
    spec.capacity = 2;
    kelvosim::addCamera(spec);
    QTRY_VERIFY(bench.driver->selectCamera("KVTINY"));
    bench.driver->trigger("openCameraAction");
    add(33, 44);
    add(50, 51);
    QString text;
    WindowDriver::whenModal([&](QWidget *question) {
        WindowDriver::answerBox(QMessageBox::Ok, &text);
        qobject_cast<QMessageBox *>(question)->button(QMessageBox::Yes)->click();
    });
    bench.invoke("writeBadpixelList");
    QCOMPARE(text, QString("Can't write more than 2 hot pixel entries."));
    QVERIFY(kelvosim::storedUserList("KVTINY").empty());
}

void TestHotpixelWork::writingToACameraWithoutStorageIsRefused()
{
    WindowDriver::answerBox(QMessageBox::Ok);
    bench.open(bench.plain);
    QString title;
    QString text;
    WindowDriver::whenModal([&](QWidget *modal) {
        auto *box = qobject_cast<QMessageBox *>(modal);
        title = box->windowTitle();
        text = box->text();
        QCOMPARE(box->icon(), QMessageBox::Critical);
        box->button(QMessageBox::Ok)->click();
    });
    bench.invoke("writeBadpixelList");
    QCOMPARE(title, QString("Not supported!"));
    QCOMPARE(text,
             QString("This camera only supports software correction and can't be saved inside the camera "
                     "memory!"));
}

void TestHotpixelWork::aListWithoutUserEntriesDeletesTheStoredOne()
{
    kelvosim::setStoredUserList("KVMONO", {{1, 2}});
    WindowDriver::answerBox(QMessageBox::Yes);
    kelvosim::clearLog();
    bench.driver->trigger("writeListAction");
    QVERIFY(kelvosim::storedUserList("KVMONO").empty());
    QVERIFY(testcamera::calls().contains("vx_HotPixel 33038"));
}

QTEST_MAIN(TestHotpixelWork)
#include "tst_hotpixelwork.moc"
