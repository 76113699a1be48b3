// SPDX-License-Identifier: MIT
// Draws the picture of the image view.

#include "imagelabel.h"

#include <QPainter>
#include <QPixmap>
#include <QVariant>

ImageLabel::ImageLabel(QWidget *parent)
    : QLabel(parent)
{
}

void ImageLabel::paintEvent(QPaintEvent *)
{
    const QPixmap picture = property("pixmap").value<QPixmap>(); // every Qt 5 has it in this shape
    if (!picture.isNull())
        QPainter(this).drawPixmap(contentsRect(), picture);
}
