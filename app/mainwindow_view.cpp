// SPDX-License-Identifier: MIT
// Keeps the image view, the hot pixel selection and the focus position together.

#include "mainwindow.h"

#include "magnifier.h"
#include "magnifiercontrol.h"
#include "ui_mainwindow.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
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
        if (magnifierControl)
            magnifierControl->magnifier()->setImage(image);
        form->display->setImage(image);
        if (!image.isNull())
            setImageVisible(true); // a camera that delivers is there, whatever was heard of its cable last
        if (detecting)
            captureDarkFrame(image);
    });
}

void MainWindow::setMagnifierPosition(QPoint position)
{
    guard([&] {
        const QPoint focus(clampToImage(position.x(), imageSize.width()),
                           clampToImage(position.y(), imageSize.height()));
        selectEntryAt(focus);
        magnifierPosition = focus;
        emit magnifierPositionChanged(focus);
    });
}

/// Where no entry lies the selection stays, so that entries outside the image can be selected too; where more
/// than one lies it stays on the one that is selected already.
void MainWindow::selectEntryAt(const QPoint &position)
{
    const QModelIndex selected = selectedHotpixel();
    if (selected.isValid()) {
        const Badpixel entry = badpixelList.badpixel(selected.row());
        if (QPoint(entry.x, entry.y) == position)
            return;
    }
    const QModelIndex entry = badpixelList.findBadpixel(position.x(), position.y(), 1);
    if (entry.isValid())
        badpixelSelection->select(entry, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void MainWindow::updateSelection(QItemSelection selected, QItemSelection)
{
    const QModelIndexList indexes = selected.indexes();
    setSelection(indexes.isEmpty() ? QModelIndex() : indexes.first(), QModelIndex());
}

void MainWindow::setSelection(QModelIndex topLeft, QModelIndex)
{
    guard([&] {
        if (topLeft.isValid())
            goToEntry(topLeft);
        else
            deleteBadpixelAction->setEnabled(false);
        form->display->redrawImage();
    });
}

void MainWindow::goToEntry(const QModelIndex &index)
{
    const Badpixel entry = badpixelList.badpixel(index.row());
    setMagnifierPosition(QPoint(entry.x, entry.y));
    const QModelIndex selected = selectedHotpixel();
    if (selected.isValid() && selected.row() != index.row())
        return; // the focus was clamped onto another entry, which is selected now and has been gone to
    scrollToEntry(entry);
    if (badpixelTable)
        badpixelTable->scrollTo(index);
    enableDeletionOf(entry);
}

void MainWindow::enableDeletionOf(const Badpixel &entry)
{
    // Kept: everything that is not the user's own counts as the factory's.
    const QString owner = entry.pixelclass == User ? "user" : "factory";
    deleteBadpixelAction->setEnabled(owner.compare("factory", Qt::CaseSensitive) != 0);
}

/// A sort leaves the selection on its row, which another entry has taken.
void MainWindow::onBadpixelListSorted()
{
    guard([this] {
        const QModelIndex selected = selectedHotpixel();
        if (selected.isValid())
            enableDeletionOf(badpixelList.badpixel(selected.row()));
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

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    if (!form || !form->display->hasFocus() || !scrollByKey(event->key()))
        QMainWindow::keyPressEvent(event);
}

/// The image view leaves all keys to the window. @return whether the key is one that scrolls
bool MainWindow::scrollByKey(int key)
{
    QScrollBar *across = form->display->horizontalScrollBar();
    QScrollBar *down = form->display->verticalScrollBar();
    const struct
    {
        QScrollBar *bar;
        int key;
        QScrollBar::SliderAction action;
    } ways[] = {{across, Qt::Key_Left, QScrollBar::SliderSingleStepSub},
                {across, Qt::Key_Right, QScrollBar::SliderSingleStepAdd},
                {down, Qt::Key_Up, QScrollBar::SliderSingleStepSub},
                {down, Qt::Key_Down, QScrollBar::SliderSingleStepAdd},
                {down, Qt::Key_PageUp, QScrollBar::SliderPageStepSub},
                {down, Qt::Key_PageDown, QScrollBar::SliderPageStepAdd}};
    for (const auto &way : ways) {
        if (way.key != key)
            continue;
        way.bar->triggerAction(way.action);
        return true;
    }
    return false;
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
