// SPDX-License-Identifier: MIT
// The enlarged view of the pixels round one pixel of the live image.
#pragma once

#include "sampling.h"

#include <QImage>
#include <QLabel>
#include <QPoint>

/// Shows the surroundings of the focus pixel, each image pixel as a square of view pixels, frames the focus
/// pixel and tells its value and colour. It asks for another focus by arrow key and click and never moves by
/// itself: whoever owns the focus answers with setPosition(). Image pixels are those of the frame, (0, 0)
/// being its top left; view pixels are those of the label. clear() empties the label and keeps the frame. GUI
/// thread only.
class Magnifier final : public QLabel
{
    Q_OBJECT

public:
    explicit Magnifier(QWidget *parent = nullptr);

    /// View pixels per image pixel, at least 1.
    int zoom() const { return zoomFactor; }

public slots:
    /// Arrow keys ask for the neighbouring image pixel; other keys travel on.
    void keyPressEvent(QKeyEvent *event) override;

    /// The left button asks for the image pixel under the mouse.
    void mousePressEvent(QMouseEvent *ev) override;

    /// Moves the focus to this image pixel, which may lie outside the frame, and redraws.
    void setPosition(QPoint position);

    /// Sets the view pixels per image pixel and redraws. Less than 1 counts as 1.
    void setZoom(int zoom);

    /// Shows a frame. The frame may wrap a borrowed buffer: it is copied before the call returns.
    void setImage(QImage &image);

    /// Draws the kept frame's piece round the focus again; empties the label while there is no frame. The
    /// piece follows the label's size of this moment.
    void redrawImage();

signals:
    /// The focus pixel was drawn and framed: "R", "G" or "B", and its value from 0 to 255; 0 outside the
    /// frame.
    void pixelInfoChanged(QString bayerColor, int value);

    /// Asks for another focus, in image pixels; it may lie outside the frame.
    void changePosition(QPoint position);

private:
    bool enlargePiece();
    void drawMarks(QImage &picture) const;
    void reportPixel();
    void requestSteps(int right, int down);

    QPoint focus;           // in image pixels
    QImage frame;           // the last one, grey or in 32 bits, in memory of its own
    ScaledPicture enlarged; // its piece round the focus, with the marks
    int zoomFactor = 20;
};
