// SPDX-License-Identifier: MIT
// The image view in its plainest form: what the real one must look like, pixel by pixel.
#pragma once

#include "badpixellistmodel.h"

#include <QImage>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPainter>
#include <QPen>
#include <QSize>

/// Shows a frame as the image view does, without any thrift: each time it copies the frame, converts it to 32
/// bits, draws cross-hair and circles one by one, and scales the whole. Redraws when told to.
class PlainView final
{
public:
    BadpixelListModel *list = nullptr;
    QItemSelectionModel *selection = nullptr;
    bool highlight = false;
    QPoint magnifierPosition{-1, -1};
    double scale = 1.0; // 0.0 fits the frame into the room
    QSize room;

    PlainView() { label.setScaledContents(true); }

    const QLabel &shownIn() const { return label; }

    void setImage(const QImage &newImage)
    {
        image = newImage.copy();
        redrawImage();
    }

    void redrawImage()
    {
        QImage picture = fresh32();
        if (picture.isNull())
            return;
        if (highlight)
            paintOverlays(picture);
        QImage scaled = scaledTo(picture, wantedSize(picture));
        if (scaled.isNull()) {
            scale /= 2;
            scaled = scaledTo(picture, scaledSize(picture));
        }
        label.setPixmap(QPixmap::fromImage(scaled));
        label.adjustSize();
    }

private:
    QImage fresh32() const
    {
        if (image.format() == QImage::Format_RGB32)
            return image.copy(); // converting would share it
        return image.convertToFormat(QImage::Format_RGB32);
    }

    void paintOverlays(QImage &picture) const
    {
        QPainter painter(&picture);
        drawCrossHair(painter, picture.size());
        painter.setRenderHint(QPainter::Antialiasing);
        drawEntries(painter);
        drawSelection(painter);
    }

    void drawCrossHair(QPainter &painter, const QSize &size) const
    {
        const QPoint &at = magnifierPosition;
        if (scale < 1.0 || at.x() == -1 || at.y() == -1)
            return;
        painter.setPen(QPen(Qt::red, 0));
        painter.setOpacity(0.3);
        painter.drawLine(at.x(), 0, at.x(), size.height());
        painter.drawLine(0, at.y(), size.width(), at.y());
        painter.setOpacity(1.0);
    }

    void drawEntries(QPainter &painter) const
    {
        for (int row = 0; list && row < list->rowCount(); ++row) {
            const Badpixel entry = list->badpixel(row);
            painter.setPen(entry.pixelclass == Factory ? Qt::yellow
                           : entry.pixelclass == User  ? Qt::green
                                                       : Qt::red);
            painter.drawEllipse(QRect(QPoint(entry.x - 4, entry.y - 4), QPoint(entry.x + 4, entry.y + 4)));
        }
    }

    void drawSelection(QPainter &painter) const
    {
        if (!list || !selection || !selection->hasSelection())
            return;
        const Badpixel entry = list->badpixel(selection->selectedIndexes().first().row());
        painter.setPen(QPen(Qt::blue, 3));
        painter.drawEllipse(QRect(QPoint(entry.x - 6, entry.y - 6), QPoint(entry.x + 6, entry.y + 6)));
    }

    QSize scaledSize(const QImage &picture) const
    {
        return QSize(int(picture.width() * scale), int(picture.height() * scale));
    }

    QSize wantedSize(const QImage &picture) const { return scale == 0.0 ? room : scaledSize(picture); }

    static QImage scaledTo(const QImage &picture, const QSize &size)
    {
        return picture.scaled(size, Qt::KeepAspectRatio, Qt::FastTransformation);
    }

    QLabel label;
    QImage image;
};
