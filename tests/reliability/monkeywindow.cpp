// SPDX-License-Identifier: MIT
// Triggers, selects, moves, resizes, repaints and closes.

#include "monkeywindow.h"

#include "badpixellistmodel.h"
#include "cameralistmodel.h"
#include "mainwindow.h"
#include "monkeydiary.h"
#include "monkeyinput.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QFont>
#include <QMenu>
#include <QPalette>
#include <QStyle>
#include <QTableView>
#include <QToolBar>

namespace {

/// Lists stay short, because every frame draws a circle for each entry.
constexpr int RowsForAWhile = 600;

const QStringList FileActions{"saveListAction", "loadListAction", "exportListAction", "importListAction"};
const QStringList Zooms{"zoom1to1Action", "zoom2to1Action", "zoom4to1Action",
                        "zoom1to2Action", "zoom1to4Action", "zoomToFitAction"};

struct Looks
{
    QString style;
    QFont font;
    QPalette palette;
};

Looks &startLooks()
{
    static Looks looks;
    return looks;
}

} // namespace

void MonkeyWindow::setWindow(MainWindow *mainWindow)
{
    window = mainWindow;
}

MonkeyKind MonkeyWindow::kind(MonkeyWindow *self, const char *name, int weight, Act act)
{
    return {name, weight, MonkeyKind::InWindow, [self, act](MonkeyRandom &random) { (self->*act)(random); }};
}

MonkeyKinds MonkeyWindow::kinds()
{
    return {kind(this, "trigger", 30, &MonkeyWindow::triggerAny),
            kind(this, "file action", 1, &MonkeyWindow::triggerFileAction),
            kind(this, "zoom", 6, &MonkeyWindow::zoom),
            kind(this, "open camera", 14, &MonkeyWindow::openCamera),
            kind(this, "detect", 4, &MonkeyWindow::detect),
            kind(this, "select row", 14, &MonkeyWindow::selectRow),
            kind(this, "sort", 4, &MonkeyWindow::sort),
            kind(this, "refresh", 16, &MonkeyWindow::refresh),
            kind(this, "statistics", 3, &MonkeyWindow::updateStatistics),
            kind(this, "keep list short", 10, &MonkeyWindow::keepListShort),
            kind(this, "toggle dock", 2, &MonkeyWindow::toggleDock),
            kind(this, "show docks", 3, &MonkeyWindow::showDocks),
            kind(this, "resize", 3, &MonkeyWindow::resize),
            kind(this, "window state", 2, &MonkeyWindow::changeState),
            kind(this, "language", 1, &MonkeyWindow::changeLanguage),
            kind(this, "looks", 1, &MonkeyWindow::changeLooks),
            kind(this, "close window", 1, &MonkeyWindow::close)};
}

void MonkeyWindow::keepLooks()
{
    startLooks() = {QApplication::style()->objectName(), QApplication::font(), QApplication::palette()};
}

void MonkeyWindow::restoreLooks()
{
    if (QApplication::style()->objectName() != startLooks().style)
        QApplication::setStyle(startLooks().style);
    QApplication::setFont(startLooks().font);
    QApplication::setPalette(startLooks().palette);
}

/// A person cannot trigger an action that is disabled; trigger() can.
void MonkeyWindow::triggerIfEnabled(QAction *action)
{
    if (action->isEnabled() && action->isVisible())
        action->trigger();
}

void MonkeyWindow::trigger(const char *name) const
{
    if (window)
        triggerIfEnabled(window->findChild<QAction *>(name));
}

QDockWidget *MonkeyWindow::anyDock(MonkeyRandom &random) const
{
    const QList<QDockWidget *> docks = window->findChildren<QDockWidget *>();
    return docks.isEmpty() ? nullptr : random.pick(docks);
}

QTableView *MonkeyWindow::table(const char *name) const
{
    return window->findChild<QTableView *>(name);
}

/// Any action but those that end the program or open a file dialogue, which takes long to build.
void MonkeyWindow::triggerAny(MonkeyRandom &random)
{
    QAction *any = random.pick(window->findChildren<QAction *>());
    if (FileActions.contains(any->objectName()) || any->objectName() == "exitAction")
        return;
    monkeydiary::note(any->objectName() + ' ' + any->text());
    triggerIfEnabled(any);
}

void MonkeyWindow::triggerFileAction(MonkeyRandom &random)
{
    const QString name = random.pick(FileActions);
    monkeydiary::note(name);
    trigger(qPrintable(name));
}

void MonkeyWindow::zoom(MonkeyRandom &random)
{
    trigger(qPrintable(random.pick(Zooms)));
}

void MonkeyWindow::openCamera(MonkeyRandom &random)
{
    QTableView *cameras = table("cameraTable");
    const int row = random.below(cameras->model()->rowCount());
    cameras->selectRow(row);
    monkeydiary::note(QString("%1 %2").arg(row).arg(cameras->model()->index(row, 3).data().toString()));
    trigger("openCameraAction");
}

void MonkeyWindow::detect(MonkeyRandom &)
{
    trigger("detectAction");
}

void MonkeyWindow::selectRow(MonkeyRandom &random)
{
    QTableView *any = table(random.oneIn(2) ? "cameraTable" : "badpixelTable");
    const int row = random.from(-1, any->model()->rowCount());
    monkeydiary::note(QString("%1 %2").arg(any->objectName()).arg(row));
    if (row < 0)
        any->clearSelection();
    else
        any->selectRow(row);
}

void MonkeyWindow::sort(MonkeyRandom &random)
{
    QTableView *any = table(random.oneIn(2) ? "cameraTable" : "badpixelTable");
    const int column = random.below(any->model()->columnCount());
    any->sortByColumn(column, random.oneIn(2) ? Qt::AscendingOrder : Qt::DescendingOrder);
}

/// What the timer of the camera list does: its time comes when the seed says so.
void MonkeyWindow::refresh(MonkeyRandom &)
{
    qobject_cast<CameraListModel *>(table("cameraTable")->model())->refresh();
}

void MonkeyWindow::updateStatistics(MonkeyRandom &)
{
    QMetaObject::invokeMethod(window.data(), "updateStatus", Qt::DirectConnection);
}

/// Clears by the user's ways: entries of other classes go with their camera alone.
void MonkeyWindow::keepListShort(MonkeyRandom &random)
{
    if (table("badpixelTable")->model()->rowCount() < RowsForAWhile)
        return;
    trigger("clearBadpixelAction");
    openCamera(random);
}

void MonkeyWindow::toggleDock(MonkeyRandom &random)
{
    QDockWidget *dock = anyDock(random);
    input.releaseAll();
    if (dock && random.oneIn(2))
        dock->close();
    else if (dock)
        dock->raise();
}

void MonkeyWindow::showDocks(MonkeyRandom &)
{
    for (QDockWidget *dock : window->findChildren<QDockWidget *>())
        dock->show();
    window->findChild<QToolBar *>()->show();
}

void MonkeyWindow::resize(MonkeyRandom &random)
{
    window->resize(random.from(1, 900), random.from(1, 600));
}

void MonkeyWindow::changeState(MonkeyRandom &random)
{
    const int state = random.below(6);
    if (state == 0)
        window->showMinimized();
    else if (state == 1)
        window->showMaximized();
    else
        window->showNormal();
}

void MonkeyWindow::changeLanguage(MonkeyRandom &)
{
    QCoreApplication::postEvent(window.data(), new QEvent(QEvent::LanguageChange));
}

void MonkeyWindow::changeLooks(MonkeyRandom &random)
{
    const int what = random.below(8);
    QPalette dark(QColor(40, 40, 40));
    if (what == 0)
        QApplication::setStyle(random.oneIn(2) ? "fusion" : "windows");
    else if (what == 1)
        QApplication::setFont(QFont(startLooks().font.family(), random.from(6, 20)));
    else if (what == 2)
        QApplication::setPalette(random.oneIn(2) ? dark : startLooks().palette);
}

/// The program ends, and is started anew.
void MonkeyWindow::close(MonkeyRandom &random)
{
    if (!random.oneIn(3))
        return;
    if (random.oneIn(2))
        trigger("exitAction");
    else
        window->close();
}
