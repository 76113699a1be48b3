// SPDX-License-Identifier: MIT
// The view of the live image with the hot pixels drawn over it.
#pragma once

#include "circleprinter.h"
#include "imageinfo.h"
#include "sampling.h"

#include <QImage>
#include <QPoint>
#include <QPointer>
#include <QScrollArea>
#include <QSize>

class BadpixelListModel;
class QItemSelectionModel;
class QLabel;

/// Shows the last frame at a zoom factor, with circles round the hot pixels, and turns clicks into a
/// selection or a position. Two coordinate systems meet here: image pixels, (0, 0) being the frame's top
/// left, in which entries, cross-hair and circles stand; and view pixels, those of the label that shows the
/// scaled frame. GUI thread only.
class DisplayWidget final : public QScrollArea
{
    Q_OBJECT

public:
    explicit DisplayWidget(QWidget *parent = nullptr);
    ~DisplayWidget() override;

    /// The list to draw and to search, borrowed; null for none. Does not redraw.
    void setListModel(BadpixelListModel *model) { listModel = model; }

public slots:
    /// Keeps the size of the camera's buffers.
    void setBufferSize(ImageInfo info) { bufferInfo = info; }

    /// Shows a frame. The frame may wrap a borrowed buffer: it is copied before the call returns.
    void setImage(QImage image);

    /// Empties the view and keeps the frame, which the next redrawImage() shows again.
    void clear();

    /// Draws and shows the kept frame again; does nothing before the first frame.
    void redrawImage();

    /// Whether circles and cross-hair are drawn. Does not redraw.
    void setHighlight(bool enabled) { highlight = enabled; }

    /// The selection over the list, borrowed and shared with the list's own view; null for none. Does not
    /// redraw.
    void setSelectionModel(QItemSelectionModel *model) { selectionModel = model; }

    /// View pixels per image pixel; 0.0 fits the frame into the view. Does not redraw.
    void setScale(double factor) { scale = factor; }

    /// The image pixel of the cross-hair; -1 in either coordinate for none. Does not redraw.
    void updateMagnifierPosition(QPoint pos) { magnifierPosition = pos; }

signals:
    /// The image pixel of a left click that found no entry; it may lie outside the image.
    void positionClicked(QPoint position);

    /// The scale had to be halved because the scaled frame could not be made; carries the new one.
    void scaleChanged(double scale);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QImage pictureForView();
    QSize sizeAtScale() const;
    QImage pictureWithin(const QSize &room);
    bool makeRoom(ScaledPicture &picture, const QSize &size);
    bool draw(ScaledPicture &picture, const QSize &size);
    void drawOverlays(ScaledPicture &picture);
    void drawCrossHair(QImage &picture) const;
    void drawEntries(ScaledPicture &picture);
    void drawSelection(ScaledPicture &picture);
    void clickAt(const QPoint &viewportPoint);
    bool findImagePixel(const QPoint &viewPoint, QPoint *imagePixel) const;
    void selectRow(const QModelIndex &entry);
    void clearSelection();

    QPointer<QLabel> imageLabel; // owned: made without a parent, deleted by the destructor
    QImage image;                // the last frame, unscaled and undrawn, in memory of its own
    ScaledPicture unscaled;      // drawn on from full scale on; shown as it is or enlarged
    ScaledPicture scaled;        // enlarged from that, or drawn on below full scale
    QSize shownSize;             // of the picture in the label, in view pixels; empty while none is shown
    CirclePrinter entryCircles;
    CirclePrinter selectionCircles;
    ImageInfo bufferInfo;
    BadpixelListModel *listModel = nullptr;
    bool highlight = false;
    QItemSelectionModel *selectionModel = nullptr;
    QPoint dragStart; // in viewport coordinates
    QPoint magnifierPosition{-1, -1};
    double scale = 1.0;
};
