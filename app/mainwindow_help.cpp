// SPDX-License-Identifier: MIT
// The help menu: usage and about.

#include "mainwindow.h"

#include "dialog_about.h"

#include <QKeySequence>
#include <QMessageBox>

namespace {

QString nativeText(int keys)
{
    return QKeySequence(keys).toString(QKeySequence::NativeText);
}

} // namespace

void MainWindow::openHelpUsageWindow()
{
    // Kept: one shortcut "adds" in the imperative, the other does not.
    const QString text =
        tr("Kelvo Speckmend - Usage\n\nNavigation:\n\nRight mouse button: Drag to move image\n"
           "Arrow keys: Click once into magnifier to move focus pixel by pixel\n\nShortcuts:"
           "\n\n%1\t Add a hot pixel to the list\n%2\t Removes a hot pixel from the list\n")
            .arg(nativeText(Qt::CTRL + Qt::Key_A), nativeText(Qt::Key_Delete));
    QMessageBox(QMessageBox::NoIcon, tr("Usage"), text, QMessageBox::Close, this).exec();
}

void MainWindow::openHelpAboutWindow()
{
    Dialog_About(this).exec();
}
