// SPDX-License-Identifier: MIT
// Drawing, key and mouse handling of the magnifier.

#include "magnifier.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPen>

#include <limits>

namespace {

// A picture smaller than this in either direction, in view pixels, has no marks and tells nothing.
constexpr int SmallestMarkedSide = 21;

// The lines that point at the focus pixel, in view pixels.
constexpr int TickLength = 16;

// Qt counts the bytes of an image in an int.
constexpr qint64 LargestPixelCount = std::numeric_limits<int>::max() / qint64(sizeof(QRgb));

int clampedToInt(qint64 value)
{
    return static_cast<int>(
        qBound<qint64>(std::numeric_limits<int>::min(), value, std::numeric_limits<int>::max()));
}

/// The image pixels that fill a side of the label, and at least one more; odd, so that one is the middle.
int oddPixelCount(int labelSide, int zoom)
{
    const int whole = labelSide / zoom;
    return whole + (whole % 2 == 0 ? 3 : 2);
}

/// The first image pixel of a piece round the focus. A piece that misses the image stays beside it, where
/// copying it is free of overflows.
int pieceStart(int focus, int pixelCount, int imageSide)
{
    return static_cast<int>(qBound<qint64>(-pixelCount, qint64(focus) - pixelCount / 2, imageSide));
}

/// The image pixels from the focus to a click this many view pixels right of or below the centre.
/// Kept: the middle square takes clicks one view pixel beyond its edge, to the right or below at even zooms,
/// to the left or above at odd ones.
int stepsFor(int offset, int zoom)
{
    const int half = zoom / 2;
    if (offset >= 1)
        return offset <= half ? 0 : (offset - half + zoom - 1) / zoom;
    const int distance = half - offset;
    return distance <= zoom ? 0 : -((distance - 1) / zoom);
}

/// The colour filter over a pixel. The lowest bit is the parity of negative coordinates as well.
QString bayerColorAt(const QPoint &pixel)
{
    const int oddX = pixel.x() & 1;
    const int oddY = pixel.y() & 1;
    if (oddX != oddY)
        return QStringLiteral("G");
    return oddX ? QStringLiteral("B") : QStringLiteral("R");
}

/// The grey value, or the blue channel.
int valueAt(const QImage &frame, const QPoint &pixel)
{
    return frame.depth() == 8 ? frame.pixelIndex(pixel) : qBlue(frame.pixel(pixel));
}

} // namespace

Magnifier::Magnifier(QWidget *parent)
    : QLabel(parent)
{
    setBackgroundRole(QPalette::Base);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    setScaledContents(false);
    setFocusPolicy(Qt::WheelFocus); // a click brings the arrow keys
    setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
}

void Magnifier::setPosition(QPoint position)
{
    focus = position;
    redrawImage();
}

void Magnifier::setZoom(int zoom)
{
    zoomFactor = qMax(1, zoom);
    redrawImage();
}

void Magnifier::setImage(QImage &image)
{
    keepFrame(frame, image); // grey if it is: only a small piece of it is shown
    redrawImage();
}

void Magnifier::redrawImage()
{
    if (!enlargePiece()) {
        clear();
        return;
    }
    QImage &picture = enlarged.pixels;
    if (picture.width() >= SmallestMarkedSide && picture.height() >= SmallestMarkedSide) {
        drawMarks(picture);
        reportPixel();
    }
    setPixmap(QPixmap::fromImage(picture));
}

/// The frame's piece round the focus, each pixel a square; black outside the frame. @return false while there
/// is no frame, and for a label so large that no image could fill it
bool Magnifier::enlargePiece()
{
    const int columns = oddPixelCount(width(), zoomFactor);
    const int rows = oddPixelCount(height(), zoomFactor);
    const qint64 pictureWidth = qint64(zoomFactor) * columns;
    const qint64 pictureHeight = qint64(zoomFactor) * rows;
    if (frame.isNull() || pictureWidth > LargestPixelCount / pictureHeight)
        return false;
    const QImage piece = frame.copy(pieceStart(focus.x(), columns, frame.width()),
                                    pieceStart(focus.y(), rows, frame.height()), columns, rows);
    if (!enlarged.makeRoom(piece.size(), QSize(int(pictureWidth), int(pictureHeight))))
        return false;
    scaleInto(enlarged.pixels, piece, enlarged.sampling);
    return true;
}

/// Frames the square in the middle, just outside of it, and points at it from four sides.
void Magnifier::drawMarks(QImage &picture) const
{
    const int centreX = picture.width() / 2;
    const int centreY = picture.height() / 2;
    const int left = centreX - zoomFactor / 2 - 1;
    const int top = centreY - zoomFactor / 2 - 1;
    const int right = left + zoomFactor;
    const int bottom = top + zoomFactor;

    QPainter painter(&picture);
    painter.setPen(QPen(Qt::green, 1));
    painter.drawLine(centreX, top - TickLength, centreX, top);
    painter.drawLine(centreX, bottom + 1, centreX, bottom + 1 + TickLength);
    painter.drawLine(left - TickLength, centreY, left, centreY);
    painter.drawLine(right + 1, centreY, right + 1 + TickLength, centreY);
    // A rectangle's lower and right lines are drawn one pixel beyond its corner, where these ticks begin.
    painter.drawRect(QRect(QPoint(left, top), QPoint(right, bottom)));
}

void Magnifier::reportPixel()
{
    emit pixelInfoChanged(bayerColorAt(focus), frame.valid(focus) ? valueAt(frame, focus) : 0);
}

void Magnifier::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        requestSteps(-1, 0);
        break;
    case Qt::Key_Up:
        requestSteps(0, -1);
        break;
    case Qt::Key_Right:
        requestSteps(1, 0);
        break;
    case Qt::Key_Down:
        requestSteps(0, 1);
        break;
    default:
        QLabel::keyPressEvent(event);
    }
}

void Magnifier::mousePressEvent(QMouseEvent *ev)
{
    if (ev->button() != Qt::LeftButton)
        return;
    requestSteps(stepsFor(ev->pos().x() - width() / 2, zoomFactor),
                 stepsFor(ev->pos().y() - height() / 2, zoomFactor));
}

void Magnifier::requestSteps(int right, int down)
{
    emit changePosition(
        QPoint(clampedToInt(qint64(focus.x()) + right), clampedToInt(qint64(focus.y()) + down)));
}
