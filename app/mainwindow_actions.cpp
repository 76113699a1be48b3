// SPDX-License-Identifier: MIT
// The window's actions, menus, tool bar and zoom levels.

#include "mainwindow.h"

#include "docktabrelease.h"
#include "ui_mainwindow.h"

#include <QAction>
#include <QDockWidget>
#include <QMenu>
#include <QTimer>
#include <QToolButton>

QAction *MainWindow::addNamedAction(const char *name, const QString &text, const QString &icon)
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    if (!icon.isEmpty())
        action->setIcon(QIcon(":/res/" + icon));
    return action;
}

void MainWindow::createActions()
{
    form->mainToolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    createCameraActions();
    createHotpixelActions();
    createZoomActions();
    createHelpActions();
    // The shortcuts must work while the tool bar is hidden.
    addAction(addBadpixelAction);
    addAction(deleteBadpixelAction);
    statisticsTimer = new QTimer(this);
}

void MainWindow::createCameraActions()
{
    openCameraAction = addNamedAction("openCameraAction", tr("&Open camera"), "openplay.png");
    openCameraAction->setEnabled(false);
    closeCameraAction = addNamedAction("closeCameraAction", tr("&Close camera"), "camclose.png");
    closeCameraAction->setEnabled(false);
    // Kept: these two start enabled, and the first change of the camera list corrects them.
    saveListAction = addNamedAction("saveListAction", tr("&Save hot pixel list"), "writeList.png");
    loadListAction = addNamedAction("loadListAction", tr("&Load hot pixel list"), "openList.png");
    highlightAction = addNamedAction("highlightAction", tr("&Highlight"), "highlight.png");
    highlightAction->setCheckable(true);
    highlightAction->setChecked(true);
}

void MainWindow::createHotpixelActions()
{
    writeListAction = addNamedAction("writeListAction", tr("&Write hot pixel"), "writeBadpixel.png");
    writeListAction->setEnabled(false);
    correctionAction =
        addNamedAction("correctionAction", tr("Hot pixel correction"), "badpixelCorrection.png");
    correctionAction->setCheckable(true);
    correctionAction->setEnabled(false);
    addBadpixelAction = addNamedAction("addBadpixelAction", tr("&Add hot pixel"), "addBadpixel.png");
    addBadpixelAction->setShortcut(QKeySequence(Qt::CTRL + Qt::Key_A));
    addBadpixelAction->setEnabled(false);
    deleteBadpixelAction =
        addNamedAction("deleteBadpixelAction", tr("&Delete hot pixel"), "deleteBadpixel.png");
    deleteBadpixelAction->setShortcut(QKeySequence(Qt::Key_Delete));
    clearBadpixelAction = addNamedAction("clearBadpixelAction", tr("Clear user hot pixel"));
    deleteBadpixelAction->setEnabled(false);
    detectAction = addNamedAction("detectAction", tr("Detec&t hot pixel"), "detectBadpixel.png");
    detectAction->setEnabled(false);
}

QAction *MainWindow::createZoomAction(const char *name, const QString &text)
{
    QAction *action = addNamedAction(name, text);
    action->setCheckable(true);
    return action;
}

void MainWindow::createZoomActions()
{
    zoom1to1Action = createZoomAction("zoom1to1Action", tr("1:1"));
    zoom1to1Action->setChecked(true);
    zoom2to1Action = createZoomAction("zoom2to1Action", tr("2:1"));
    zoom4to1Action = createZoomAction("zoom4to1Action", tr("4:1"));
    zoom1to2Action = createZoomAction("zoom1to2Action", tr("1:2"));
    zoom1to4Action = createZoomAction("zoom1to4Action", tr("1:4"));
    zoomToFitAction = createZoomAction("zoomToFitAction", tr("To fit"));
    zoomToFitAction->setVisible(false);
    zoomToFitAction->setEnabled(false);

    zoomMenu = new QMenu(this);
    zoomMenu->addActions(
        {zoom1to4Action, zoom1to2Action, zoom1to1Action, zoom2to1Action, zoom4to1Action, zoomToFitAction});
    zoomAction = addNamedAction("zoomAction", zoom1to1Action->text(), "zoom.png");
    zoomAction->setMenu(zoomMenu);
    zoomAction->setEnabled(false);
}

void MainWindow::createHelpActions()
{
    usageAction = addNamedAction("usageAction", tr("&Usage"), "help.png");
    aboutAction = addNamedAction("aboutAction", tr("&About..."), "information.png");
}

void MainWindow::createMenus()
{
    createCameraListDock();
    createBadpixelListDock();
    createMagnifierDock();
    createCameraSliderDock();
    tabifyDockWidget(cameraListDock, badpixelListDock);
    new DockTabRelease(this);
    createToolBar();
    createStatusBar();
    createFileMenu();
    createViewMenu();
    createHelpMenu();
}

void MainWindow::createToolBar()
{
    QToolBar *bar = form->mainToolBar;
    bar->addActions({openCameraAction, closeCameraAction});
    bar->addSeparator();
    bar->addActions(
        {correctionAction, detectAction, writeListAction, addBadpixelAction, deleteBadpixelAction});
    bar->addSeparator();
    bar->addActions({highlightAction, zoomAction});
    // One plain click opens the zoom menu.
    if (auto *button = qobject_cast<QToolButton *>(bar->widgetForAction(zoomAction)))
        button->setPopupMode(QToolButton::InstantPopup);
    // Most of these commands are in no menu. By Tab alone: a click leaves the keyboard where it was.
    for (QToolButton *button : bar->findChildren<QToolButton *>()) {
        button->setFocusPolicy(Qt::TabFocus);
        if (!button->defaultAction()) // opens what a narrow window has no room for
            button->setAccessibleName(tr("More commands"));
    }
}

void MainWindow::createFileMenu()
{
    QAction *exportAction =
        addNamedAction("exportListAction", tr("&Export hot pixel list"), "exportList.png");
    QAction *importAction =
        addNamedAction("importListAction", tr("&Import hot pixel list"), "importList.png");
    QAction *exitAction = addNamedAction("exitAction", tr("E&xit"), "exit.png");
    connect(exportAction, &QAction::triggered, this, &MainWindow::exportBadpixelList);
    connect(importAction, &QAction::triggered, this, &MainWindow::importBadpixelList);
    connect(exitAction, &QAction::triggered, this, &MainWindow::close);

    QMenu *menu = form->menuBar->addMenu(tr("&File"));
    menu->addActions({openCameraAction, closeCameraAction});
    menu->addSeparator();
    menu->addActions({saveListAction, loadListAction});
    menu->addSeparator();
    menu->addActions({exportAction, importAction});
    menu->addSeparator();
    menu->addAction(exitAction);
}

void MainWindow::createViewMenu()
{
    showCameraListAction = addNamedAction("showCameraListAction", tr("Camera list"), "cameraList.png");
    showBadpixelListAction =
        addNamedAction("showBadpixelListAction", tr("Hot pixel list"), "badpixelList.png");
    showMagnifierAction = addNamedAction("showMagnifierAction", tr("Magnifier"), "window_view.png");
    showCameraSliderAction =
        addNamedAction("showCameraSliderAction", tr("Camera properties"), "cameraproperties.png");
    const QList<QAction *> toggles{showCameraListAction, showBadpixelListAction, showMagnifierAction,
                                   showCameraSliderAction};
    for (QAction *toggle : toggles)
        toggle->setCheckable(true);
    connect(showCameraListAction, &QAction::triggered, this, &MainWindow::onShowHideCameraListDock);
    connect(showBadpixelListAction, &QAction::triggered, this, &MainWindow::onShowHideBadpixelListDock);
    connect(showMagnifierAction, &QAction::triggered, this, &MainWindow::onShowHideMagnifierDock);
    connect(showCameraSliderAction, &QAction::triggered, this, &MainWindow::onShowHideCameraSliderDock);

    QMenu *menu = form->menuBar->addMenu(tr("&View"));
    connect(menu, &QMenu::aboutToShow, this, &MainWindow::onMenuShow);
    menu->addActions(toggles);
    menu->addSeparator();
    menu->addAction(highlightAction);
}

void MainWindow::createHelpMenu()
{
    QMenu *menu = form->menuBar->addMenu(tr("&Help"));
    menu->addAction(usageAction);
    menu->addSeparator();
    menu->addAction(aboutAction);
}

struct MainWindow::Zoom
{
    QAction *action;
    double scale;    // view pixels an image pixel; 0.0 fits the image into the view
    int scaleFactor; // Kept: the reductions count as 1
};

void MainWindow::onZoomChanged(QAction *act)
{
    for (QAction *action :
         {zoom1to1Action, zoom2to1Action, zoom4to1Action, zoom1to4Action, zoom1to2Action, zoomToFitAction})
        action->setChecked(false);
    shownMark = 1111.0;
    const Zoom zooms[] = {{zoom1to1Action, 1.0, 1}, {zoom2to1Action, 2.0, 2},  {zoom4to1Action, 4.0, 4},
                          {zoom1to2Action, 0.5, 1}, {zoom1to4Action, 0.25, 1}, {zoomToFitAction, 0.0, 0}};
    for (const Zoom &zoom : zooms) {
        if (zoom.action != act)
            continue;
        zoomAction->setText(act->text());
        act->setChecked(true);
        form->display->setScale(zoom.scale);
        scaleFactor = zoom.scaleFactor;
        return;
    }
}
