// SPDX-License-Identifier: MIT
// Drawing, scaling and clicking of the image view.

#include "displaywidget.h"

#include "badpixellistmodel.h"
#include "truncate.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPen>
#include <QScrollBar>

namespace {

// Radii in image pixels: circles grow and shrink with the zoom.
constexpr int EntryRadius = 4;
constexpr int SelectionRadius = 6;
constexpr int SelectionPenWidth = 3;
constexpr double CrossHairOpacity = 0.3;

// Below this zoom a line one image pixel wide is lost to the scaling, so the cross-hair is left out.
constexpr double SmallestCrossHairScale = 1.0;

// A click this many image pixels from an entry, or further, misses it.
constexpr int ClickTolerance = 7;

// The frame round the scroll area, one view pixel a side.
constexpr int FrameWidth = 2;

constexpr double ToFit = 0.0;

QRect circleRound(const Badpixel &entry, int radius)
{
    return QRect(QPoint(entry.x - radius, entry.y - radius), QPoint(entry.x + radius, entry.y + radius));
}

QColor classColour(int pixelclass)
{
    switch (pixelclass) {
    case Factory:
        return Qt::yellow;
    case User:
        return Qt::green;
    default:
        return Qt::red;
    }
}

void moveBar(QScrollBar *bar, int step)
{
    bar->setValue(bar->value() + step);
}

} // namespace

DisplayWidget::DisplayWidget(QWidget *parent)
    : QScrollArea(parent)
    , imageLabel(new QLabel)
{
    imageLabel->setBackgroundRole(QPalette::Base);
    imageLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    imageLabel->setScaledContents(true);
    setBackgroundRole(QPalette::Dark);
    setWidget(imageLabel);
}

DisplayWidget::~DisplayWidget()
{
    delete imageLabel;
}

void DisplayWidget::setImage(QImage newImage)
{
    // Assigning would share the camera's buffer, which is gone after the call.
    image = newImage.copy();
    redrawImage();
}

void DisplayWidget::clear()
{
    imageLabel->clear();
    shownSize = QSize();
}

void DisplayWidget::redrawImage()
{
    QImage picture = freshPicture();
    if (picture.isNull())
        return;
    if (highlight)
        paintOverlays(picture);
    const QImage scaled = scaledForView(picture);
    shownSize = scaled.size();
    imageLabel->setPixmap(QPixmap::fromImage(scaled));
    imageLabel->adjustSize();
}

/// The frame in 32 bits, to be painted on. Frames without a colour table come out grey.
QImage DisplayWidget::freshPicture() const
{
    // Converting a 32-bit frame would hand out the kept frame itself. A painter detaches it, but what is
    // to be painted on is copied here in so many words.
    if (image.format() == QImage::Format_RGB32)
        return image.copy();
    return image.convertToFormat(QImage::Format_RGB32);
}

void DisplayWidget::paintOverlays(QImage &picture) const
{
    QPainter painter(&picture);
    drawCrossHair(painter, picture.size());
    painter.setRenderHint(QPainter::Antialiasing);
    drawEntries(painter);
    drawSelection(painter);
}

void DisplayWidget::drawCrossHair(QPainter &painter, const QSize &imageSize) const
{
    const int x = magnifierPosition.x();
    const int y = magnifierPosition.y();
    if (scale < SmallestCrossHairScale || x == -1 || y == -1)
        return;
    painter.setPen(QPen(Qt::red, 0));
    painter.setOpacity(CrossHairOpacity);
    painter.drawLine(x, 0, x, imageSize.height());
    painter.drawLine(0, y, imageSize.width(), y);
    painter.setOpacity(1.0);
}

void DisplayWidget::drawEntries(QPainter &painter) const
{
    if (!listModel)
        return;
    for (int row = 0; row < listModel->rowCount(); ++row) {
        const Badpixel entry = listModel->badpixel(row);
        painter.setPen(classColour(entry.pixelclass));
        painter.drawEllipse(circleRound(entry, EntryRadius));
    }
}

void DisplayWidget::drawSelection(QPainter &painter) const
{
    if (!listModel || !selectionModel || !selectionModel->hasSelection())
        return;
    const QModelIndex selected = selectionModel->selectedIndexes().value(0);
    if (!selected.isValid() || selected.row() >= listModel->rowCount())
        return;
    painter.setPen(QPen(Qt::blue, SelectionPenWidth));
    painter.drawEllipse(circleRound(listModel->badpixel(selected.row()), SelectionRadius));
}

/// The size that a picture of this size may take in the view, before its aspect ratio is kept.
QSize DisplayWidget::viewSize(const QSize &imageSize) const
{
    if (scale == ToFit)
        return size() - QSize(FrameWidth, FrameWidth);
    return QSize(truncated(imageSize.width() * scale), truncated(imageSize.height() * scale));
}

/// The picture at the present scale; at half of it, kept from now on, when that cannot be made. Null when
/// neither can.
QImage DisplayWidget::scaledForView(const QImage &picture)
{
    // Nearest neighbour keeps single hot pixels sharp.
    QImage scaled = picture.scaled(viewSize(picture.size()), Qt::KeepAspectRatio, Qt::FastTransformation);
    if (!scaled.isNull())
        return scaled;
    scale /= 2;
    const QSize halved(truncated(picture.width() * scale), truncated(picture.height() * scale));
    scaled = picture.scaled(halved, Qt::KeepAspectRatio, Qt::FastTransformation);
    emit scaleChanged(scale);
    return scaled;
}

void DisplayWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::RightButton)
        dragStart = event->pos();
    else if (event->buttons() & Qt::LeftButton)
        clickAt(event->pos());
}

void DisplayWidget::clickAt(const QPoint &viewportPoint)
{
    QPoint pixel;
    if (!findImagePixel(imageLabel->mapFromParent(viewportPoint), &pixel))
        return;
    QModelIndex entry;
    if (listModel)
        entry = listModel->findBadpixel(pixel.x(), pixel.y(), ClickTolerance);
    if (entry.isValid()) {
        selectRow(entry);
        return;
    }
    clearSelection();
    emit positionClicked(pixel);
}

/// The image pixel under a point of the label; @return false when there is none because nothing is fitted.
bool DisplayWidget::findImagePixel(const QPoint &viewPoint, QPoint *imagePixel) const
{
    double scaleX = scale;
    double scaleY = scale;
    if (scale == ToFit) {
        // The label's own size tells nothing: it outlives clear(), and a label without a picture has one too.
        if (image.isNull() || shownSize.isEmpty())
            return false;
        scaleX = static_cast<double>(shownSize.width()) / image.width();
        scaleY = static_cast<double>(shownSize.height()) / image.height();
    }
    *imagePixel = QPoint(truncated(viewPoint.x() / scaleX), truncated(viewPoint.y() / scaleY));
    return true;
}

void DisplayWidget::selectRow(const QModelIndex &entry)
{
    if (selectionModel)
        selectionModel->select(entry, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void DisplayWidget::clearSelection()
{
    if (selectionModel)
        selectionModel->select(QModelIndex(), QItemSelectionModel::Clear);
}

void DisplayWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::RightButton))
        return;
    moveBar(horizontalScrollBar(), dragStart.x() - event->pos().x());
    moveBar(verticalScrollBar(), dragStart.y() - event->pos().y());
    dragStart = event->pos();
}

void DisplayWidget::keyPressEvent(QKeyEvent *event)
{
    // Arrow keys belong to the window, not to the scroll bars.
    event->ignore();
}
