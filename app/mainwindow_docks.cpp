// SPDX-License-Identifier: MIT
// The docks with their tables, and the tables' context menus.

#include "mainwindow.h"

#include "ui_mainwindow.h"

#include <QDockWidget>
#include <QHeaderView>
#include <QMenu>

QDockWidget *MainWindow::createListDock(const QString &title, const char *name, QTableView *table)
{
    auto *dock = new QDockWidget(title, this);
    dock->setObjectName(name);
    dock->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    dock->setWidget(table);
    addDockWidget(Qt::LeftDockWidgetArea, dock);
    return dock;
}

void MainWindow::compactRows(QTableView *table)
{
    QHeaderView *rows = table->verticalHeader();
    rows->setDefaultSectionSize(rows->minimumSectionSize());
}

void MainWindow::createCameraListDock()
{
    cameraTable = new QTableView;
    cameraTable->setObjectName("cameraTable");
    cameraTable->setAccessibleName(tr("Camera list"));
    cameraTable->setModel(&cameraList);
    cameraTable->setSortingEnabled(true);
    cameraTable->setSelectionModel(cameraSelection);
    cameraTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    cameraTable->setSelectionMode(QAbstractItemView::SingleSelection);
    compactRows(cameraTable);
    cameraTable->verticalHeader()->hide();
    cameraTable->horizontalHeader()->setSortIndicatorShown(false);
    cameraTable->horizontalHeader()->setHighlightSections(false);
    cameraTable->horizontalHeader()->setStretchLastSection(true);
    cameraTable->resizeColumnsToContents();
    cameraTable->setContextMenuPolicy(Qt::CustomContextMenu);
    cameraTable->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContentsOnFirstShow);
    connect(cameraTable, &QTableView::customContextMenuRequested, this, &MainWindow::showCameraListContextMenu);
    connect(cameraTable, &QTableView::doubleClicked, this, &MainWindow::openCamera);
    cameraListDock = createListDock(tr("Camera list"), "CameraListDock", cameraTable);
}

void MainWindow::createBadpixelListDock()
{
    badpixelTable = new QTableView;
    badpixelTable->setObjectName("badpixelTable");
    badpixelTable->setAccessibleName(tr("Hot pixel list"));
    badpixelTable->setModel(&badpixelList);
    badpixelTable->setSortingEnabled(true);
    badpixelTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    badpixelTable->setSelectionMode(QAbstractItemView::SingleSelection);
    badpixelTable->setContextMenuPolicy(Qt::CustomContextMenu);
    badpixelTable->setSelectionModel(badpixelSelection);
    compactRows(badpixelTable);
    badpixelTable->horizontalHeader()->setDefaultSectionSize(40);
    badpixelTable->horizontalHeader()->setSortIndicatorShown(false);
    badpixelTable->horizontalHeader()->setHighlightSections(false);
    badpixelTable->verticalHeader()->hide();
    badpixelTable->horizontalHeader()->setStretchLastSection(true);
    badpixelTable->setTextElideMode(Qt::ElideNone); // four digits just fit
    connect(badpixelTable, &QTableView::customContextMenuRequested, this,
            &MainWindow::showBadpixelListContextMenu);
    badpixelListDock = createListDock(tr("Hot pixel list"), "BadpixelListDock", badpixelTable);
}

/// Kept: a context menu lives on as the window's child after it has closed.
void MainWindow::showCameraListContextMenu(QPoint)
{
    auto *menu = new QMenu(this);
    menu->addActions({openCameraAction, closeCameraAction});
    menu->exec(QCursor::pos());
}

void MainWindow::showBadpixelListContextMenu(QPoint)
{
    auto *menu = new QMenu(this);
    menu->addAction(addBadpixelAction);
    if (selectedHotpixel().isValid())
        menu->addAction(deleteBadpixelAction);
    if (badpixelList.rowCount() > badpixelList.factoryEntries())
        menu->addAction(clearBadpixelAction);
    menu->exec(QCursor::pos());
}

void MainWindow::onShowHideCameraListDock()
{
    if (cameraListDock)
        cameraListDock->setVisible(!cameraListDock->isVisible());
}

void MainWindow::onShowHideBadpixelListDock()
{
    if (badpixelListDock)
        badpixelListDock->setVisible(!badpixelListDock->isVisible());
}

void MainWindow::onMenuShow()
{
    showCameraListAction->setChecked(cameraListDock && cameraListDock->isVisible());
    showBadpixelListAction->setChecked(badpixelListDock && badpixelListDock->isVisible());
}
