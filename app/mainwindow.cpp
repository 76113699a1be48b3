// SPDX-License-Identifier: MIT
// Construction of the window and the connections between everything that it owns.

#include "mainwindow.h"

#include "focusring.h"
#include "ui_mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QIcon>
#include <QItemSelectionModel>
#include <QMenu>
#include <QTimer>

namespace {

constexpr int RefreshMilliseconds = 1000;

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , form(std::make_unique<Ui::MainWindow>())
    , cameraList(RefreshMilliseconds, nullptr)
{
    try {
        build();
    } catch (...) {
        takeDown();
        throw;
    }
}

void MainWindow::build()
{
    Q_INIT_RESOURCE(speckmend); // the icons are compiled into a static library
    form->setupUi(this);
    setWindowTitle(tr("Kelvo Speckmend"));
    setWindowIcon(QIcon(":/res/main.ico"));
    form->centralWidget->layout()->setContentsMargins(0, 0, 0, 0);
    createSelectionModels();
    prepareView();
    createActions();
    createMenus();
    connectActions();
    connectCamera();
    connectLists();
    connectView();
    readSettings();
    cameraListDock->raise();
    cameraList.updateList();
    setImageVisible(false);
    cameraTable->resizeColumnsToContents(); // once more, now that there are rows
}

MainWindow::~MainWindow()
{
    guard([this] { writeSettings(); });
    takeDown();
}

/// What must go before the members do; docks outlive them and must not call back.
void MainWindow::takeDown()
{
    if (magnifierDock)
        disconnect(magnifierDock.data(), nullptr, this, nullptr);
    disconnect(qApp, nullptr, this, nullptr);
    delete cameraSelection;
    delete badpixelSelection;
    form.reset();
}

void MainWindow::createSelectionModels()
{
    cameraSelection = new QItemSelectionModel(&cameraList, this);
    badpixelSelection = new QItemSelectionModel(&badpixelList, this);
    form->display->setSelectionModel(badpixelSelection);
    form->display->setListModel(&badpixelList);
}

void MainWindow::connectActions()
{
    connect(openCameraAction, &QAction::triggered, this, &MainWindow::openCamera);
    connect(closeCameraAction, &QAction::triggered, this, &MainWindow::closeCamera);
    connect(saveListAction, &QAction::triggered, this, &MainWindow::saveBadpixelList);
    connect(loadListAction, &QAction::triggered, this, &MainWindow::loadBadpixelList);
    connect(highlightAction, &QAction::toggled, form->display, &DisplayWidget::setHighlight);
    connect(writeListAction, &QAction::triggered, this, &MainWindow::writeBadpixelList);
    connect(addBadpixelAction, &QAction::triggered, this, &MainWindow::addNewBadpixel);
    connect(deleteBadpixelAction, &QAction::triggered, this, &MainWindow::deleteBadpixel);
    connect(clearBadpixelAction, &QAction::triggered, this, &MainWindow::clearBadpixel);
    connect(detectAction, &QAction::triggered, this, &MainWindow::openDetectDialog);
    connect(zoomMenu, &QMenu::triggered, this, &MainWindow::onZoomChanged);
    connect(usageAction, &QAction::triggered, this, &MainWindow::openHelpUsageWindow);
    connect(aboutAction, &QAction::triggered, this, &MainWindow::openHelpAboutWindow);
    connect(correctionAction, &QAction::triggered, this, &MainWindow::onHotpixelCorrection);
}

/// The order is behaviour: on opening, the camera list learns which camera is open and the hot pixel list is
/// read before the window enables its actions; on closing, the list is emptied before they are disabled. A
/// step that fails is reported and the ones after it still run.
void MainWindow::connectCamera()
{
    connect(&camera, &Camera::cameraOpened, &cameraList,
            [this](Camera *opened) { guard([=] { cameraList.setOpenCamera(opened); }); });
    connect(&camera, &Camera::cameraOpened, &badpixelList,
            [this](Camera *opened) { guard([=] { badpixelList.getBadpixelList(opened); }); });
    connect(&camera, &Camera::cameraOpened, this, &MainWindow::onCameraOpened);
    connect(&camera, &Camera::cameraOpened, &cameraList, &CameraListModel::refresh);
    connect(&camera, &Camera::cameraClosed, &cameraList, &CameraListModel::clearOpenCamera);
    connect(&camera, &Camera::cameraClosed, &cameraList, &CameraListModel::refresh);
    connect(&camera, &Camera::cameraClosed, &badpixelList,
            [this] { guard([this] { badpixelList.clearBadpixelList(); }); });
    connect(&camera, &Camera::cameraClosed, this, &MainWindow::onCameraClosed);
    connect(&camera, &Camera::newImage, this, &MainWindow::newImage);
    connect(&camera, &Camera::displayError, this, &MainWindow::showText);
    connect(&camera, &Camera::cameraNewDevice, &cameraList, &CameraListModel::refresh);
    connect(&camera, &Camera::cameraRemovedDevice, &cameraList, &CameraListModel::refresh);
    connect(&camera, &Camera::cameraRemoved, this, &MainWindow::onCameraDisconnect);
    connect(&camera, &Camera::cameraReconnect, this, &MainWindow::onCameraReconnect);
}

void MainWindow::connectLists()
{
    connect(&cameraList, &CameraListModel::refreshFailed, this, &MainWindow::showText);
    connect(&cameraList, &CameraListModel::somethingChanged, this, &MainWindow::updateCameraActions);
    connect(&cameraList, &CameraListModel::rowToSelect, this, &MainWindow::onSelectCameraRow);
    connect(cameraSelection, &QItemSelectionModel::selectionChanged, this, &MainWindow::updateCameraActions);
    connect(badpixelSelection, &QItemSelectionModel::selectionChanged, this, &MainWindow::updateSelection);
    connect(&badpixelList, &BadpixelListModel::dataChanged, this, &MainWindow::setSelection);
    // A sort moves other entries under the selected rows without telling the selection models.
    connect(&cameraList, &CameraListModel::layoutChanged, this, &MainWindow::updateCameraActions);
    connect(&badpixelList, &BadpixelListModel::layoutChanged, this, &MainWindow::onBadpixelListSorted);
}

/// What the form cannot say of the image view.
void MainWindow::prepareView()
{
    form->display->setAccessibleName(tr("Live image"));
    // An image has no direction of reading: its left stays left, under scrolling and clicks too.
    form->display->setLayoutDirection(Qt::LeftToRight);
    new FocusRing(form->display);
}

void MainWindow::connectView()
{
    connect(form->display, &DisplayWidget::positionClicked, this, &MainWindow::setMagnifierPosition);
    // The scale arrives truncated to an integer, as the zoom factor is kept.
    connect(form->display, &DisplayWidget::scaleChanged, this, &MainWindow::updateScaleFactor);
    connect(this, &MainWindow::magnifierPositionChanged, this, &MainWindow::updateStatusPosition);
    connect(this, &MainWindow::magnifierPositionChanged, form->display,
            &DisplayWidget::updateMagnifierPosition);
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::showFocused);
    connect(statisticsTimer, &QTimer::timeout, this, &MainWindow::updateStatus);
}

/// Kept: the form's own title, "Speckmend", comes back with it.
void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        form->retranslateUi(this);
}
