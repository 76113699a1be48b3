// SPDX-License-Identifier: MIT
// A label that can look like a link and reports clicks.
#include "qclickablelabel.h"

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

QClickableLabel::HandCursor::HandCursor()
{
    QGuiApplication::setOverrideCursor(QCursor(Qt::PointingHandCursor));
}

QClickableLabel::HandCursor::~HandCursor()
{
    QGuiApplication::restoreOverrideCursor();
}

QClickableLabel::QClickableLabel(QWidget *parent, bool isClickable)
    : QLabel(parent)
    , clickable(isClickable)
{
    if (clickable) {
        setStyleSheet(QStringLiteral("QLabel { color : blue; text-decoration : underline; }"));
        setFocusPolicy(Qt::TabFocus); // who can be clicked can be reached without a mouse
    }
}

void QClickableLabel::setValue(int number)
{
    value = number;
    setText(QString::number(value, 10));
}

// Kept: any button counts, and a label that is not clickable reports too. The base class would let the
// release through to the parent. Whoever is told may delete the label, so nothing may follow.
void QClickableLabel::mouseReleaseEvent(QMouseEvent *)
{
    emit clicked(value);
}

/// The keys that press a button. Nothing may follow here either.
void QClickableLabel::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (clickable && (key == Qt::Key_Space || key == Qt::Key_Enter || key == Qt::Key_Return))
        emit clicked(value);
    else
        QLabel::keyPressEvent(event);
}

void QClickableLabel::paintEvent(QPaintEvent *event)
{
    if (clickable && parentWidget())
        paintGround();
    QLabel::paintEvent(event);
    if (!hasFocus())
        return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

/// The blue of a link is lost on a dark window: there it stands on the colour of the texts round it.
void QClickableLabel::paintGround()
{
    const QPalette &around = parentWidget()->palette();
    const QColor ground = around.color(QPalette::WindowText);
    if (ground.lightness() < around.color(QPalette::Window).lightness())
        return;
    const int aligned = QStyle::visualAlignment(layoutDirection(), alignment());
    const QRect words = style()->itemTextRect(fontMetrics(), contentsRect(), aligned, isEnabled(), text());
    QPainter(this).fillRect(words.adjusted(-1, -1, 1, 1), ground);
}

void QClickableLabel::enterEvent(QEvent *event)
{
    if (clickable && !hand)
        hand = std::make_unique<HandCursor>();
    QWidget::enterEvent(event);
}

void QClickableLabel::leaveEvent(QEvent *event)
{
    hand.reset();
    QWidget::leaveEvent(event);
}

/// A label that goes with its dialogue, closed by a key say, is not told that the mouse has left.
void QClickableLabel::hideEvent(QHideEvent *event)
{
    hand.reset();
    QLabel::hideEvent(event);
}

/// Neither is one that is switched off or moved to another parent under the mouse.
void QClickableLabel::changeEvent(QEvent *event)
{
    const bool isSwitchedOff = event->type() == QEvent::EnabledChange && !isEnabled();
    if (isSwitchedOff || event->type() == QEvent::ParentChange)
        hand.reset();
    QLabel::changeEvent(event);
}
