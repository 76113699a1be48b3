// SPDX-License-Identifier: MIT
// Draws the picture of the image view.

#include "imagelabel.h"

#include <QEvent>
#include <QPainter>
#include <QPixmap>
#include <QVariant>

ImageLabel::ImageLabel(QWidget *parent)
    : QLabel(parent)
{
}

bool ImageLabel::eventFilter(QObject *viewport, QEvent *event)
{
    return event->type() == QEvent::LayoutRequest || QLabel::eventFilter(viewport, event);
}

void ImageLabel::paintEvent(QPaintEvent *)
{
    const QPixmap picture = property("pixmap").value<QPixmap>(); // every Qt 5 has it in this shape
    if (!picture.isNull())
        QPainter(this).drawPixmap(contentsRect(), picture);
}
