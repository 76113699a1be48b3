// SPDX-License-Identifier: MIT
// Lets go of a dock's tab before the tab goes.
#include "docktabrelease.h"

#include <QCoreApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QMouseEvent>
#include <QTabBar>

namespace {

const QPoint Beside(-1, -1); // on no tab, so that none is clicked

} // namespace

DockTabRelease::DockTabRelease(QMainWindow *mainWindow)
    : QObject(mainWindow)
    , window(mainWindow)
{
    for (QDockWidget *dock : window->findChildren<QDockWidget *>())
        dock->installEventFilter(this);
}

/// The layout takes the tab away later, when it is laid out anew.
bool DockTabRelease::eventFilter(QObject *dock, QEvent *event)
{
    if (event->type() == QEvent::HideToParent || event->type() == QEvent::ShowToParent)
        releaseTabs();
    return QObject::eventFilter(dock, event);
}

/// The bars belong to the window's layout, which makes them as docks are put behind each other.
void DockTabRelease::releaseTabs()
{
    for (QTabBar *bar : window->findChildren<QTabBar *>(QString(), Qt::FindDirectChildrenOnly)) {
        QMouseEvent release(QEvent::MouseButtonRelease, Beside, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(bar, &release);
    }
}
