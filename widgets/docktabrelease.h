// SPDX-License-Identifier: MIT
// Lets go of a dock's tab before the tab goes.
#pragma once

#include <QObject>

class QMainWindow;

/// Ends the dragging of a dock's tab when a dock is shown or hidden, as by key while the mouse holds the tab.
/// Qt's tab bar goes by the number of the tab that is held, also when tabs have come or gone meanwhile, and
/// ends the program at the next move of the mouse. Looks after the docks that the window has when this is
/// made, and belongs to the window. GUI thread only.
class DockTabRelease final : public QObject
{
    Q_OBJECT

public:
    explicit DockTabRelease(QMainWindow *mainWindow);

    bool eventFilter(QObject *dock, QEvent *event) override;

private:
    void releaseTabs();

    QMainWindow *window;
};
