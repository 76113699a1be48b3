// SPDX-License-Identifier: MIT
// Drawing, scaling and clicking of the image view.

#include "displaywidget.h"

#include "badpixellistmodel.h"
#include "imagelabel.h"
#include "truncate.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPen>
#include <QScrollBar>

#include <limits>

namespace {

// Radii in image pixels: circles grow and shrink with the zoom.
constexpr int EntryRadius = 4;
constexpr int SelectionRadius = 6;
constexpr int EntryPenWidth = 1;
constexpr int SelectionPenWidth = 3;
constexpr double CrossHairOpacity = 0.3;

// Below this zoom a line one image pixel wide is lost to the scaling, so the cross-hair is left out.
constexpr double SmallestCrossHairScale = 1.0;

// A click this many image pixels from an entry, or further, misses it.
constexpr int ClickTolerance = 7;

// The frame round the scroll area, one view pixel a side.
constexpr int FrameWidth = 2;

constexpr double ToFit = 0.0;

// Qt counts the bits of a row in an int: wider frames cannot be converted to 32 bits, so none is shown.
constexpr int LargestWidth = std::numeric_limits<int>::max() / 32;

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
    , imageLabel(new ImageLabel)
    , entryCircles(EntryRadius, EntryPenWidth)
    , selectionCircles(SelectionRadius, SelectionPenWidth)
{
    imageLabel->setBackgroundRole(QPalette::Base);
    imageLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    imageLabel->setScaledContents(true);
    setBackgroundRole(QPalette::Dark);
    setWidget(imageLabel);
    viewport()->installEventFilter(imageLabel);
}

DisplayWidget::~DisplayWidget()
{
    delete imageLabel;
}

void DisplayWidget::setImage(QImage newImage)
{
    keepFrame(image, newImage);
    redrawImage();
}

void DisplayWidget::clear()
{
    imageLabel->clear();
    shownSize = QSize();
    unscaled = ScaledPicture();
    scaled = ScaledPicture();
}

void DisplayWidget::redrawImage()
{
    if (image.isNull() || image.width() > LargestWidth)
        return;
    // Overlays are drawn in image pixels and grow with them. Where they shrink, only those of their pixels
    // that stay need to be drawn.
    const bool drawnUnscaled = scale >= SmallestCrossHairScale; // before it may be halved
    if (!drawnUnscaled)
        unscaled = ScaledPicture();
    else if (!draw(unscaled, image.size()))
        return;
    const QImage picture = pictureForView();
    shownSize = picture.size();
    imageLabel->setPixmap(QPixmap::fromImage(picture));
    imageLabel->adjustSize();
}

/// The picture at the present scale; at half of it, kept from now on, when that cannot be made. Null when
/// neither can.
QImage DisplayWidget::pictureForView()
{
    const QSize room = scale == ToFit ? size() - QSize(FrameWidth, FrameWidth) : sizeAtScale();
    QImage picture = pictureWithin(room);
    if (!picture.isNull())
        return picture;
    scale /= 2;
    picture = pictureWithin(sizeAtScale());
    emit scaleChanged(scale);
    return picture;
}

QSize DisplayWidget::sizeAtScale() const
{
    return QSize(truncated(image.width() * scale), truncated(image.height() * scale));
}

/// The largest picture of the frame's aspect ratio in this room, of the unscaled one if that is drawn.
QImage DisplayWidget::pictureWithin(const QSize &room)
{
    if (room.isEmpty())
        return QImage();
    const QSize size = image.size().scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    if (size == unscaled.pixels.size()) {
        scaled = ScaledPicture();
        return unscaled.pixels;
    }
    if (unscaled.pixels.isNull())
        draw(scaled, size);
    else if (makeRoom(scaled, size))
        scaleInto(scaled.pixels, unscaled.pixels, scaled.sampling);
    return scaled.pixels;
}

/// Makes a picture ready to be drawn on. The label lets go of it, so that its memory can serve again.
bool DisplayWidget::makeRoom(ScaledPicture &picture, const QSize &size)
{
    if (picture.pixels.size() == size)
        imageLabel->clear();
    return picture.makeRoom(image.size(), size);
}

/// Draws the frame in this size and what is highlighted in it. @return false when there is no memory for it
bool DisplayWidget::draw(ScaledPicture &picture, const QSize &size)
{
    if (!makeRoom(picture, size))
        return false;
    scaleInto(picture.pixels, image, picture.sampling);
    if (highlight)
        drawOverlays(picture);
    return true;
}

void DisplayWidget::drawOverlays(ScaledPicture &picture)
{
    drawCrossHair(picture.pixels);
    drawEntries(picture);
    drawSelection(picture);
}

void DisplayWidget::drawCrossHair(QImage &picture) const
{
    const int x = magnifierPosition.x();
    const int y = magnifierPosition.y();
    if (scale < SmallestCrossHairScale || x == -1 || y == -1)
        return;
    QPainter painter(&picture);
    painter.setPen(QPen(Qt::red, 0));
    painter.setOpacity(CrossHairOpacity);
    painter.drawLine(x, 0, x, picture.height());
    painter.drawLine(0, y, picture.width(), y);
}

void DisplayWidget::drawEntries(ScaledPicture &picture)
{
    if (!listModel)
        return;
    for (int row = 0; row < listModel->rowCount(); ++row) {
        const Badpixel entry = listModel->badpixel(row);
        entryCircles.add(QPoint(entry.x, entry.y), classColour(entry.pixelclass).rgb());
    }
    entryCircles.print(picture);
}

void DisplayWidget::drawSelection(ScaledPicture &picture)
{
    if (!listModel || !selectionModel || !selectionModel->hasSelection())
        return;
    const QModelIndex selected = selectionModel->selectedIndexes().value(0);
    if (!selected.isValid() || selected.row() >= listModel->rowCount())
        return;
    const Badpixel entry = listModel->badpixel(selected.row());
    selectionCircles.add(QPoint(entry.x, entry.y), QColor(Qt::blue).rgb());
    selectionCircles.print(picture);
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
