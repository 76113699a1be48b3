// SPDX-License-Identifier: MIT
// Shows where the keyboard is.
#include "focusring.h"

#include <QFocusEvent>
#include <QPainter>

namespace {

constexpr int Thickness = 2; // of the ring

/// Reasons that take the focus away for a while and bring it back to the same widget.
bool isPassing(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
}

bool isByKey(Qt::FocusReason reason)
{
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

} // namespace

FocusRing::FocusRing(QWidget *owner)
    : QWidget(owner)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    fit();
    hide();
    owner->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject *owner, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Resize:
        fit();
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        follow(*static_cast<QFocusEvent *>(event));
        break;
    default:
        break;
    }
    return QWidget::eventFilter(owner, event);
}

/// Nothing but the ring itself: what changes within is not drawn twice.
void FocusRing::fit()
{
    const QRect whole = parentWidget()->rect();
    setGeometry(whole);
    setMask(QRegion(whole) - whole.adjusted(Thickness, Thickness, -Thickness, -Thickness));
}

void FocusRing::follow(const QFocusEvent &event)
{
    if (isPassing(event.reason()))
        return;
    setVisible(event.gotFocus() && isByKey(event.reason()));
    raise();
}

void FocusRing::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), palette().highlight());
}
