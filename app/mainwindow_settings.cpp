// SPDX-License-Identifier: MIT
// What the window remembers from one run to the next: its geometry and where its docks and tool bar are.

#include "mainwindow.h"
#include "savedlayout.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QDesktopWidget>
#include <QSettings>
#include <QStyle>
#include <QToolBar>

namespace {

const int StateVersion = 0;

/// The place of the window's values in the platform's store of settings.
class WindowSettings
{
public:
    WindowSettings()
    {
        settings.beginGroup("Speckmend");
        settings.beginGroup("mainWindow");
    }

    ~WindowSettings()
    {
        settings.endGroup();
        settings.endGroup();
    }

    QByteArray value(const char *key) const { return settings.value(key).toByteArray(); }
    void setValue(const char *key, const QByteArray &bytes) { settings.setValue(key, bytes); }

private:
    QSettings settings{"Kelvo", "Kelvo"};
};

} // namespace

/// What is missing or cannot be understood leaves the layout as it is.
void MainWindow::readSettings()
{
    const WindowSettings settings;
    if (!restoreGeometry(settings.value("geometry")))
        fitToScreen();
    const QByteArray state = settings.value("state");
    if (isSavedLayout(state) && restoreState(state, StateVersion))
        fetchFloatingToolBar();
}

/// The screen on which it floated may be gone. Qt fetches floating docks, but not tool bars.
void MainWindow::fetchFloatingToolBar()
{
    QToolBar *bar = form->mainToolBar;
    if (!bar->isFloating())
        return;
    QRect place = bar->geometry();
    const QRect room = QApplication::desktop()->availableGeometry(bar);
    place.setSize(place.size().boundedTo(room.size()));
    place.moveRight(qMin(place.right(), room.right()));
    place.moveBottom(qMin(place.bottom(), room.bottom()));
    place.moveLeft(qMax(place.left(), room.left()));
    place.moveTop(qMax(place.top(), room.top()));
    bar->setGeometry(place);
}

/// A new window is as large as the form, or as a small screen lets it be: what lies beyond cannot be reached.
void MainWindow::fitToScreen()
{
    const int frame = style()->pixelMetric(QStyle::PM_TitleBarHeight); // the frame comes with the first show
    const QSize room = QApplication::desktop()->availableGeometry(this).size() - QSize(0, frame);
    resize(size().boundedTo(room));
}

void MainWindow::writeSettings()
{
    WindowSettings settings;
    settings.setValue("geometry", saveGeometry());
    settings.setValue("state", saveState(StateVersion));
}
