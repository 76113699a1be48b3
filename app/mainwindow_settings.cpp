// SPDX-License-Identifier: MIT
// What the window remembers from one run to the next: its geometry and where its docks and tool bar are.

#include "mainwindow.h"

#include <QSettings>

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
    restoreGeometry(settings.value("geometry"));
    restoreState(settings.value("state"), StateVersion);
}

void MainWindow::writeSettings()
{
    WindowSettings settings;
    settings.setValue("geometry", saveGeometry());
    settings.setValue("state", saveState(StateVersion));
}
