// SPDX-License-Identifier: MIT
// Keeps the image view, the hot pixel selection and the focus position together.

#include "mainwindow.h"

#include "ui_mainwindow.h"

#include <QItemSelectionModel>
#include <QScrollBar>

#include <limits>

namespace {

int clampToImage(int coordinate, int extent)
{
    const int last = extent > 0 ? extent - 1 : std::numeric_limits<int>::max(); // no image, no upper bound
    return qBound(0, coordinate, last);
}

} // namespace

void MainWindow::newImage(QImage &image)
{
    guard([&] {
        imageSize = image.size();
        form->display->setImage(image);
        if (detecting)
            captureDarkFrame(image);
    });
}

void MainWindow::setMagnifierPosition(QPoint position)
{
    guard([&] {
        const QPoint focus(clampToImage(position.x(), imageSize.width()),
                           clampToImage(position.y(), imageSize.height()));
        const QModelIndex entry = badpixelList.findBadpixel(focus.x(), focus.y(), 1);
        if (entry.isValid()) // otherwise the selection stays: entries outside the image can be selected too
            badpixelSelection->select(entry, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        magnifierPosition = focus;
        emit magnifierPositionChanged(focus);
    });
}

void MainWindow::updateSelection(QItemSelection selected, QItemSelection)
{
    const QModelIndexList indexes = selected.indexes();
    setSelection(indexes.isEmpty() ? QModelIndex() : indexes.first(), QModelIndex());
}

void MainWindow::setSelection(QModelIndex topLeft, QModelIndex)
{
    guard([&] {
        if (!topLeft.isValid()) {
            deleteBadpixelAction->setEnabled(false);
            form->display->redrawImage();
            return;
        }
        const Badpixel entry = badpixelList.badpixel(topLeft.row());
        setMagnifierPosition(QPoint(entry.x, entry.y));
        scrollToEntry(entry);
        if (badpixelTable)
            badpixelTable->scrollTo(topLeft);
        // Kept: everything that is not the user's own counts as the factory's.
        const QString owner = entry.pixelclass == User ? "user" : "factory";
        deleteBadpixelAction->setEnabled(owner.compare("factory", Qt::CaseSensitive) != 0);
        form->display->redrawImage();
    });
}

void MainWindow::scrollToEntry(const Badpixel &entry)
{
    const QWidget *label = form->display->widget();
    scrollInProportion(form->display->verticalScrollBar(), label->height(), entry.y);
    scrollInProportion(form->display->horizontalScrollBar(), label->width(), entry.x);
}

/// The entry ends at the same fraction of the scroll range as of the image, not centred.
void MainWindow::scrollInProportion(QScrollBar *bar, int labelExtent, int position) const
{
    if (bar->maximum() == 0 || scaleFactor == 0 || labelExtent / scaleFactor == 0)
        return;
    const int step = bar->maximum() / (labelExtent / scaleFactor);
    bar->setValue(step * position);
}

void MainWindow::updateScaleFactor(int scale)
{
    scaleFactor = scale;
    QAction *zoom = scale == 2 ? zoom2to1Action : scale == 1 ? zoom1to1Action : nullptr;
    if (!zoom)
        return;
    onZoomChanged(zoom);
    showText(tr("The image is too big and will be resized"), 2000);
}
