// SPDX-License-Identifier: MIT
// The docks with their tables, and the tables' context menus.

#include "mainwindow.h"

#include "focusring.h"
#include "magnifier.h"
#include "magnifiercontrol.h"
#include "parameterblockwidget.h"
#include "ui_mainwindow.h"

#include <QDockWidget>
#include <QHeaderView>
#include <QMenu>
#include <QSlider>

namespace {

constexpr int ClassColumn = 2;
const Qt::DockWidgetAreas SideAreas = Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea;

} // namespace

QDockWidget *MainWindow::createDock(const QString &title, const char *name, QWidget *inner, QWidget *parent)
{
    auto *dock = new QDockWidget(title, parent);
    dock->setObjectName(name);
    dock->setWidget(inner);
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
    cameraTable->setTabKeyNavigation(false); // Tab leads on, arrow keys choose the row
    cameraTable->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContentsOnFirstShow);
    connect(cameraTable, &QTableView::customContextMenuRequested, this,
            &MainWindow::showCameraListContextMenu);
    connect(cameraTable, &QTableView::doubleClicked, this, &MainWindow::openCamera);
    cameraListDock = createDock(tr("Camera list"), "CameraListDock", cameraTable, this);
    cameraListDock->setAllowedAreas(SideAreas);
    addDockWidget(Qt::LeftDockWidgetArea, cameraListDock);
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
    badpixelTable->setTabKeyNavigation(false); // Tab leads on, arrow keys choose the row
    badpixelTable->setItemDelegateForColumn(ClassColumn, &classDelegate);
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
    badpixelListDock = createDock(tr("Hot pixel list"), "BadpixelListDock", badpixelTable, this);
    badpixelListDock->setAllowedAreas(SideAreas);
    addDockWidget(Qt::LeftDockWidgetArea, badpixelListDock);
}

void MainWindow::createMagnifierDock()
{
    magnifierControl = new MagnifierControl;
    prepareMagnifier();
    magnifierDock = createDock(tr("Magnifier"), "MagnifierDock", magnifierControl, this);
    magnifierDock->setAllowedAreas(SideAreas);
    const Magnifier *magnifier = magnifierControl->magnifier();
    connect(magnifierDock.data(), &QObject::destroyed, this, &MainWindow::clearMagnifier);
    connect(this, &MainWindow::magnifierPositionChanged, magnifier, &Magnifier::setPosition);
    connect(magnifier, &Magnifier::changePosition, this, &MainWindow::setMagnifierPosition);
    addDockWidget(Qt::LeftDockWidgetArea, magnifierDock);
    if (camera.isOpen())
        magnifierControl->magnifier()->setPosition(magnifierPosition);
}

/// The magnifier and its slider bear no text that a screen reader could read.
void MainWindow::prepareMagnifier()
{
    magnifierControl->magnifier()->setAccessibleName(tr("Magnifier"));
    new FocusRing(magnifierControl->magnifier());
    if (auto *zoom = magnifierControl->findChild<QSlider *>())
        zoom->setAccessibleName(tr("Magnification"));
}

/// The dock is gone, and the magnifier with it: from here on the window does without.
void MainWindow::clearMagnifier()
{
    magnifierControl = nullptr;
}

void MainWindow::createCameraSliderDock()
{
    parameterBlock = new ParameterBlockWidget;
    cameraSliderDock = createDock(tr("Camera properties"), "CameraSliderDock", parameterBlock, nullptr);
    connectCameraSliders();
    parameterBlock->setEnabled(false);
    addDockWidget(Qt::LeftDockWidgetArea, cameraSliderDock);
}

/// No signal is blocked on the way round: controls report values that the camera clamps, and the camera's
/// busy flags end the loop. The pixel clock has no control.
void MainWindow::connectCameraSliders()
{
    DoubleParameterWidget *framerate = parameterBlock->framerate();
    DoubleParameterWidget *exposure = parameterBlock->exposure();
    ParameterWidget *mastergain = parameterBlock->mastergain();
    connect(framerate, &DoubleParameterWidget::valueChanged, &camera, &Camera::setFramerate);
    connect(&camera, &Camera::framerateChanged, framerate, &DoubleParameterWidget::setParam);
    connect(exposure, &DoubleParameterWidget::valueChanged, &camera, &Camera::setExposure);
    connect(&camera, &Camera::exposureChanged, exposure, &DoubleParameterWidget::setParam);
    connect(mastergain, &ParameterWidget::valueChanged, &camera, &Camera::setMastergain);
    connect(&camera, &Camera::mastergainChanged, mastergain, &ParameterWidget::setParam);
    connect(this, &MainWindow::cameraOpened, parameterBlock.data(), &QWidget::setEnabled);
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

/// Tab goes through every dock; one that lies behind another comes to the front when it is reached. A window
/// that becomes active gives the focus back to where it was, and nothing moves.
void MainWindow::showFocused(QWidget *before, QWidget *now)
{
    if (!before || !now || before->window() != now->window())
        return;
    for (QWidget *widget = now; widget; widget = widget->parentWidget()) {
        auto *dock = qobject_cast<QDockWidget *>(widget);
        if (dock && dock->visibleRegion().isEmpty())
            dock->raise();
    }
}

void MainWindow::flipVisibility(QDockWidget *dock)
{
    if (dock)
        dock->setVisible(!dock->isVisible());
}

void MainWindow::onShowHideCameraListDock()
{
    flipVisibility(cameraListDock);
}

void MainWindow::onShowHideBadpixelListDock()
{
    flipVisibility(badpixelListDock);
}

void MainWindow::onShowHideMagnifierDock()
{
    flipVisibility(magnifierDock);
}

void MainWindow::onShowHideCameraSliderDock()
{
    flipVisibility(cameraSliderDock);
}

void MainWindow::onMenuShow()
{
    showCameraListAction->setChecked(cameraListDock && cameraListDock->isVisible());
    showBadpixelListAction->setChecked(badpixelListDock && badpixelListDock->isVisible());
    showMagnifierAction->setChecked(magnifierDock && magnifierDock->isVisible());
    showCameraSliderAction->setChecked(cameraSliderDock && cameraSliderDock->isVisible());
}
