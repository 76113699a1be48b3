// SPDX-License-Identifier: MIT
// The one camera connection: open, close, unplugged and back, its actions, its correction.

#include "mainwindow.h"

#include "magnifier.h"
#include "magnifiercontrol.h"
#include "ui_mainwindow.h"

#include <QItemSelectionModel>
#include <QMessageBox>
#include <QTimer>

namespace {

constexpr int StatusColumn = 4;
constexpr int StatisticsMilliseconds = 1500;

} // namespace

/// The entry of the selected row; an empty entry when nothing is selected.
CameraEntry MainWindow::selectedCamera() const
{
    const QModelIndexList selected = cameraSelection->selectedIndexes();
    return selected.isEmpty() ? CameraEntry() : cameraList.camera(selected.first().row());
}

void MainWindow::openCamera()
{
    const CameraEntry entry = selectedCamera();
    if (entry == CameraEntry() || entry.inUse)
        return;
    guard([&] { openSelectedCamera(entry); }, 5000);
    if (!camera.isOpen()) { // nor is the one that was open before
        form->display->clear();
        setImageVisible(false);
    }
    // Also after a failure: the focus and the action are put back all the same.
    setMagnifierPosition(QPoint(0, 0));
    checkCorrectionSupport();
}

void MainWindow::openSelectedCamera(const CameraEntry &entry)
{
    shownMark = 1111.0;
    camera.open(static_cast<int>(entry.deviceId));
    camera.setBadPixelCorrection(correctionAction->isChecked());
    onZoomChanged(zoom1to1Action);
    camera.setAutoConfig();
    form->display->clear();
    form->display->setHighlight(highlightAction->isChecked());
    setImageVisible(true);
    statisticsTimer->start(StatisticsMilliseconds);
}

/// After a failed open there is no camera that could be spoken of: then only the action is disabled.
void MainWindow::checkCorrectionSupport()
{
    const bool supported = camera.isOpen() && camera.supportsCameraCorrection();
    writeListAction->setEnabled(supported);
    if (camera.isOpen() && !supported)
        QMessageBox::warning(
            this, tr("Please note!"),
            tr("This camera only supports software correction and therefore can't save inside "
               "the camera memory."));
}

/// Only the row of the open camera closes it. Nothing in here throws.
void MainWindow::closeCamera()
{
    const CameraEntry entry = selectedCamera();
    if (entry == CameraEntry() || entry.serialNumber != camera.serialNumber())
        return;
    if (detecting)
        abortRun(); // before the camera's last image, which has none, counts as a frame
    camera.close();
    shownMark = 1111.0;
    statisticsTimer->stop();
    form->display->clear();
    setImageVisible(false);
    if (magnifierControl)
        magnifierControl->magnifier()->clear();
    setMagnifierPosition(QPoint(0, 0));
    resetStatistics();
}

void MainWindow::onCameraOpened(Camera *)
{
    emit cameraOpened(true);
}

void MainWindow::onCameraClosed()
{
    emit cameraOpened(false);
    if (detecting)
        abortRun();
}

/// The camera stays open: it comes back, or the user closes it.
void MainWindow::onCameraDisconnect()
{
    shownMark = 1111.0;
    setImageVisible(false);
    QImage none;
    newImage(none);
}

void MainWindow::onCameraReconnect()
{
    cameraList.refresh();
    for (int row = 0; row < cameraList.rowCount(); ++row) {
        // The last match stays selected. A camera that is back shows "in use" until the next refresh.
        if (cameraList.data(cameraList.index(row, StatusColumn)).toString() == "in use")
            selectCameraRow(row);
    }
    setImageVisible(true);
}

void MainWindow::onSelectCameraRow(int row)
{
    if (cameraSelection->selection().isEmpty())
        selectCameraRow(row);
}

void MainWindow::selectCameraRow(int row)
{
    if (!cameraTable || row >= cameraList.rowCount())
        return;
    cameraTable->selectRow(row);
    // From right to left, the table looks for the row's first cell beyond its edge and selects nothing.
    if (!cameraSelection->isRowSelected(row, QModelIndex()))
        cameraTable->setCurrentIndex(cameraList.index(row, 0));
}

/// Enables "Write" for the open camera even where it cannot store lists: the check after opening disables it,
/// the next change of the camera list enables it again, and writing then says so. Kept.
void MainWindow::updateCameraActions()
{
    const CameraEntry entry = selectedCamera();
    openCameraAction->setEnabled(!entry.inUse && !entry.serialNumber.isEmpty());
    for (QAction *action : {closeCameraAction, saveListAction, loadListAction, correctionAction, detectAction,
                            addBadpixelAction, writeListAction, zoomAction})
        action->setEnabled(entry.opened);
}

void MainWindow::onHotpixelCorrection()
{
    camera.setBadPixelCorrection(correctionAction->isChecked());
}

void MainWindow::setImageVisible(bool visible)
{
    form->display->widget()->setVisible(visible);
}
