// SPDX-License-Identifier: MIT
// Compares what the window shows with what its models and the bench hold.

#include "monkeyinvariants.h"

#include "badpixellistmodel.h"
#include "cameralistmodel.h"
#include "detectiondialogue.h"
#include "mainwindow.h"
#include "monkeyanswers.h"
#include "monkeybench.h"
#include "monkeydiary.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QFileDialog>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QTableView>

namespace {

constexpr int DeepestNesting = 10;
constexpr int MostTopLevels = 60; // menus apart
constexpr int ChecksOfTopLevels = 16;

const QMap<QString, QString> LabelStarts{
    {"userCountLabel", "U: "},   {"factoryCountLabel", "F: "}, {"xLabel", "x: "},          {"yLabel", "y: "},
    {"framesLabel", "Frames: "}, {"failedLabel", "Failed: "},  {"frameRateLabel", "FPS: "}};

int selectedRow(const QTableView *table)
{
    const QModelIndexList selected = table->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}

} // namespace

MonkeyInvariants::MonkeyInvariants(MainWindow &mainWindow, MonkeyBench &theBench, MonkeyAnswers &theAnswers)
    : window(mainWindow)
    , bench(theBench)
    , answers(theAnswers)
    , cameraTable(window.findChild<QTableView *>("cameraTable"))
    , badpixelTable(window.findChild<QTableView *>("badpixelTable"))
    , cameraList(qobject_cast<CameraListModel *>(cameraTable->model()))
    , badpixelList(qobject_cast<BadpixelListModel *>(badpixelTable->model()))
    , openAction(actionsNamed({"openCameraAction"}).first())
    , writeAction(actionsNamed({"writeListAction"}).first())
    , deleteAction(actionsNamed({"deleteBadpixelAction"}).first())
    , zoomAction(actionsNamed({"zoomAction"}).first())
    , cameraActions(actionsNamed(
          {"closeCameraAction", "correctionAction", "detectAction", "addBadpixelAction", "zoomAction"}))
    , lateActions(actionsNamed({"saveListAction", "loadListAction"}))
    , zooms(actionsNamed({"zoom1to1Action", "zoom2to1Action", "zoom4to1Action", "zoom1to2Action",
                          "zoom1to4Action", "zoomToFitAction"}))
{
    for (auto start = LabelStarts.constBegin(); start != LabelStarts.constEnd(); ++start)
        labels.insert(start.key(), window.findChild<QLabel *>(start.key()));
    followWindow();
    followLists();
}

void MonkeyInvariants::followWindow()
{
    connect(&window, &MainWindow::cameraOpened, this, [this](bool opened) {
        cameraOpen = opened;
        listReplaced = true;
        monkeydiary::count(opened ? "cameras opened" : "cameras closed");
    });
    connect(&window, &MainWindow::detectionFinished, this, [] { monkeydiary::count("detections finished"); });
    connect(deleteAction, &QAction::triggered, this, [this] { ++deletions; });
    connect(actionsNamed({"clearBadpixelAction"}).first(), &QAction::triggered, this,
            [this] { usersMayGo = true; });
    for (QDockWidget *dock : window.findChildren<QDockWidget *>()) {
        connect(dock, &QDockWidget::dockLocationChanged, this,
                [] { monkeydiary::count("docks put in place"); });
        connect(dock, &QDockWidget::topLevelChanged, this,
                [] { monkeydiary::count("docks floated or docked"); });
    }
    for (QAction *each : window.findChildren<QAction *>())
        connect(each, &QAction::triggered, this,
                [] { monkeydiary::count("actions of the window triggered"); });
}

void MonkeyInvariants::followLists()
{
    const auto updated = [this] { actionsUpdated = true; };
    connect(cameraList, &CameraListModel::somethingChanged, this, updated);
    connect(cameraList, &CameraListModel::layoutChanged, this, updated);
    connect(cameraTable->selectionModel(), &QItemSelectionModel::selectionChanged, this, updated);
    connect(badpixelList, &BadpixelListModel::pixelAdded, this,
            [](int added) { monkeydiary::count("entries added", added); });
    // Starting a run may clear the user's entries, and is always a dialogue's doing.
    connect(badpixelList, &BadpixelListModel::rowsRemoved, this, [this] {
        if (window.findChild<DetectionDialogue *>())
            usersMayGo = true;
    });
}

void MonkeyInvariants::check(int depth)
{
    checkNesting(depth);
    checkCameraActions();
    checkCamera(depth);
    checkZoom();
    checkLabels();
    checkTable(cameraTable);
    checkTable(badpixelTable);
    checkDeletion();
    checkEntries(depth);
    checkStoredLists(depth);
}

void MonkeyInvariants::require(bool holds, const char *what) const
{
    if (!holds)
        monkeydiary::finding(what);
}

QVector<QAction *> MonkeyInvariants::actionsNamed(const QStringList &names) const
{
    QVector<QAction *> found;
    for (const QString &name : names)
        found << window.findChild<QAction *>(name);
    return found;
}

void MonkeyInvariants::checkNesting(int depth)
{
    require(depth <= DeepestNesting, "event loops pile up");
    require(window.findChildren<DetectionDialogue *>(QString(), Qt::FindDirectChildrenOnly).size() <= 1,
            "two detection dialogues");
    require(depth > 0 || !window.findChild<QDialog *>(QString(), Qt::FindDirectChildrenOnly),
            "a dialogue is left when it has closed");
    require(depth > 0 || !QApplication::overrideCursor(), "the cursor stays changed");
    if (++checks % ChecksOfTopLevels != 0)
        return;
    int tops = 0;
    for (const QWidget *top : QApplication::topLevelWidgets())
        tops += qobject_cast<const QMenu *>(top) ? 0 : 1; // Kept: context menus live as long as the window
    require(tops <= MostTopLevels, "windows pile up");
}

void MonkeyInvariants::checkCameraActions() const
{
    const int row = selectedRow(cameraTable);
    const CameraEntry entry = row < 0 ? CameraEntry() : cameraList->camera(row);
    require(openAction->isEnabled() == (!entry.inUse && !entry.serialNumber.isEmpty()),
            "the open action does not fit the selected camera");
    for (const QAction *each : cameraActions)
        require(each->isEnabled() == entry.opened, "a camera action does not fit the selected camera");
    for (const QAction *each : lateActions)
        require(!actionsUpdated || each->isEnabled() == entry.opened,
                "a list action does not fit the selected camera");
    // Opening enables or disables it by what the camera can do, the next update by what is selected.
    require(!writeAction->isEnabled() || entry.opened || cameraOpen,
            "writing is enabled without an open camera");
}

void MonkeyInvariants::checkCamera(int depth) const
{
    if (bench.releaseFailed())
        return;
    require(kelvosim::openHandles() == (cameraOpen ? 1 : 0),
            "the library's open cameras are not the window's");
    require(depth > 0 || kelvosim::lockedBuffers() == 0, "a buffer stays locked");
}

void MonkeyInvariants::checkZoom() const
{
    const QAction *checked = nullptr;
    for (const QAction *zoom : zooms) {
        require(!checked || !zoom->isChecked(), "two zooms are checked");
        checked = zoom->isChecked() ? zoom : checked;
    }
    require(checked, "no zoom is checked");
    require(checked->text() == zoomAction->text(), "the zoom action shows another zoom");
}

void MonkeyInvariants::checkLabels() const
{
    for (auto label = labels.constBegin(); label != labels.constEnd(); ++label) {
        const QString text = label.value()->text();
        if (text.isEmpty())
            continue; // nothing to tell yet
        const QString start = LabelStarts.value(label.key());
        bool isNumber = false;
        const double number = text.midRef(start.size()).toDouble(&isNumber);
        require(text.startsWith(start) && isNumber, "a label of the status bar is no number");
        require(number >= 0.0, "a label of the status bar is negative");
    }
}

void MonkeyInvariants::checkTable(const QTableView *table) const
{
    const int rows = table->model()->rowCount();
    require(table->verticalHeader()->count() == rows, "the table has other rows than its model");
    const QModelIndexList selected = table->selectionModel()->selectedIndexes();
    require(selected.size() <= table->model()->columnCount(), "more than one row is selected");
    for (const QModelIndex &index : selected)
        require(index.isValid() && index.row() < rows && index.row() == selected.first().row(),
                "a row is selected that is none");
    const QModelIndex current = table->selectionModel()->currentIndex();
    require(!current.isValid() || current.row() < rows, "the current row is none");
}

void MonkeyInvariants::checkDeletion() const
{
    const int row = selectedRow(badpixelTable);
    const bool isUsers = row >= 0 && badpixelList->badpixel(row).pixelclass == User;
    require(deleteAction->isEnabled() == isUsers, "deletion does not fit the selected entry");
}

MonkeyInvariants::Counts MonkeyInvariants::countEntries() const
{
    Counts now;
    for (int row = 0; row < badpixelList->rowCount(); ++row)
        ++(badpixelList->badpixel(row).pixelclass == User ? now.users : now.others);
    return now;
}

/// Files are read when their dialogue has closed, before the action that opened it ends.
void MonkeyInvariants::checkEntries(int depth)
{
    const Counts now = countEntries();
    usersMayGo = usersMayGo || (depth > 0 && window.findChild<QFileDialog *>());
    require(listReplaced || now.others >= counts.others, "an entry went that is not the user's own");
    require(listReplaced || usersMayGo || now.users >= counts.users - deletions,
            "an entry of the user's went");
    counts = now;
    listReplaced = false;
    deletions = 0;
    usersMayGo = usersMayGo && depth > 0;
}

/// The list is written when the box has closed, before the action that opened it ends.
void MonkeyInvariants::checkStoredLists(int depth)
{
    if (answers.isConfirmed() && depth > 0)
        return;
    if (answers.takeConfirmation())
        bench.acceptStoredLists();
    const auto &expected = bench.expectedLists();
    for (auto list = expected.constBegin(); list != expected.constEnd(); ++list) {
        if (kelvosim::storedUserList(list.key()) != list.value())
            monkeydiary::finding("another list is stored, and nobody confirmed that, in " +
                                 QString::fromStdString(list.key()));
    }
}
